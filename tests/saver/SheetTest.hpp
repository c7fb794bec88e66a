#pragma once

#include "platform/SystemLog.hpp"
#include "platform/ui/PopUpButton.hpp"
#include "platform/ui/Slider.hpp"
#include "platform/ui/TaggedViews.hpp"
#include "saver/QZLCirraneController.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "tests/foundation/ScopedPlatformVersion.hpp"
#include "tests/settings/RecordingStore.hpp"
#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeTimers.hpp"
#include "tests/support/PrivateDesktop.hpp"
#include "tests/support/ShownWindow.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <QtGui/QAccessible>
#include <QtTest/QTest>
#include <QtWidgets/QCheckBox>
#include <QtWidgets/QPushButton>
#include <string>
#include <vector>

/// The sheet of the bundle that was built, shown, over settings in memory; its animations stand until they are ticked,
/// and what it opens arrives at its desktop's handler.
class SheetTest : public testing::Test {
protected:
    SheetTest() {
        defaults().registerDefaults();
        store->clearCalls();
        platform::setSystemLogSink([this](std::string_view line) { log.emplace_back(line); });
        desktop.registerHandler(0);
    }
    ~SheetTest() override {
        controller.reset();
        platform::setPreferencesStore(nullptr);
        platform::setSystemLogSink({});
        EXPECT_EQ(log, std::vector<std::string>());
    }

    static QZLDefaultsManager& defaults() { return QZLDefaultsManager::sharedInstance(); }

    /// Opens the sheet anew, as a host does.
    void open() {
        controller = std::make_unique<QZLCirraneController>();
        ASSERT_NE(controller->window(), nullptr);
        ASSERT_TRUE(fake::showActive(*controller->window()));
    }
    QWidget& window() { return *controller->window(); }

    template <typename View>
    View& view(const char* name) {
        auto* const found = window().findChild<View*>(QString::fromLatin1(name));
        if (found == nullptr) {
            throw std::runtime_error(std::string("the sheet has no ") + name);
        }
        return *found;
    }
    platform::Slider& slider(const char* name) { return view<platform::Slider>(name); }
    platform::PopUpButton& popUp(const char* name) { return view<platform::PopUpButton>(name); }
    QPushButton& button(const char* name) { return view<QPushButton>(name); }
    static void click(QWidget& target, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QTest::mouseClick(&target, Qt::LeftButton, modifiers);
    }

    bool isHidden(std::int32_t tag) { return platform::isHidden(*platform::viewWithTag(&window(), tag)); }
    /// Whether all views of these tags can be seen, wholly.
    bool areShown(std::int32_t first, std::int32_t last) {
        for (std::int32_t tag = first; tag <= last; ++tag) {
            const QWidget& tagged = *platform::viewWithTag(&window(), tag);
            if (platform::isHidden(tagged) || platform::alphaValue(tagged) != 1.0) {
                return false;
            }
        }
        return true;
    }
    bool areHidden(std::int32_t first, std::int32_t last) {
        for (std::int32_t tag = first; tag <= last; ++tag) {
            if (!isHidden(tag)) {
                return false;
            }
        }
        return true;
    }

    fake::PrivateDesktop desktop;
    ScopedPlatformVersion platformVersion{"10.13.2"};
    fake::BuiltBundle bundle;
    fake::Timers timers;
    std::shared_ptr<RecordingStore> store = RecordingStore::install();
    std::vector<std::string> log;
    std::unique_ptr<QZLCirraneController> controller;
};

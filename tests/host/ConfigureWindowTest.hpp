#pragma once

#include "host/ConfigureWindow.hpp"
#include "tests/host/RecordingSaver.hpp"
#include "tests/support/EventLoop.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/Files.hpp"
#include "tests/support/TemporaryDirectory.hpp"

#include <gtest/gtest.h>

#include <QtGui/QKeyEvent>
#include <QtWidgets/QApplication>
#include <filesystem>
#include <memory>

/// The window for the settings over a saver that writes down what it is asked to do.
class ConfigureWindowTest : public testing::Test {
protected:
    ~ConfigureWindowTest() override { QApplication::setFont(_font); }

    void open() { open({saver.module(), true, {}}); }
    void open(const host::Showing& showing) {
        window = std::make_unique<host::ConfigureWindow>(showing, host::HostTexts(nullptr), hosts, command);
        window->show();
        handleEvents();
    }
    static void handleEvents() {
        for (int round = 0; round < 3; ++round) {
            QApplication::sendPostedEvents();
            QApplication::processEvents();
        }
    }
    QPushButton* button(const QString& name) const {
        for (QPushButton* const candidate : window->findChildren<QPushButton*>()) {
            if (candidate->accessibleName() == name) {
                return candidate;
            }
        }
        ADD_FAILURE() << "there is no button " << name.toStdString();
        return nullptr;
    }
    QPushButton* options() const { return button(QStringLiteral("Options…")); }
    QPushButton* fullscreen() const { return button(QStringLiteral("Full-screen test")); }
    void press(int key) const {
        QWidget* const focused = window->focusWidget();
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QKeyEvent up(QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(focused, &down);
        QApplication::sendEvent(focused, &up);
    }
    bool shows(const std::string& words) const {
        for (const QLabel* const label : window->findChildren<QLabel*>()) {
            if (label->isVisible() && label->text().toStdString().find(words) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
    bool eventuallyEndsWith(const std::string& line) const {
        return fake::eventuallyInLoop([&] { return !saver.lines().empty() && saver.lines().back() == line; });
    }

    fake::ScopedGpu gpu;
    fake::RecordingSaver saver;
    fake::TemporaryDirectory directory;
    std::vector<host::SaverHost> hosts{{"XScreenSaver", "HOST_ENABLE_XSCREENSAVER", "a line to copy"},
                                       {"MATE Screensaver", "HOST_ENABLE_MATE", ""}};
    std::vector<std::string> command{"/bin/true"};
    QWidget sheet;
    std::unique_ptr<host::ConfigureWindow> window;

private:
    const QFont _font = QApplication::font();
};

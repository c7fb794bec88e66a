#pragma once

#include "foundation/QZLEnvironment.hpp"
#include "foundation/QZLJournal.hpp"
#include "platform/PreferencesStore.hpp"
#include "platform/Random.hpp"
#include "platform/SystemLog.hpp"
#include "saver/QZLCirraneRenderer.hpp"
#include "settings/QZLDefaultsManager.hpp"
#include "tests/support/FakeClock.hpp"
#include "tests/support/FakeGpu.hpp"
#include "tests/support/FakeHostView.hpp"
#include "tests/support/TestBundle.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <vector>

/// A saver on a fake machine: settings in memory and at their defaults, a standing clock, a silent log.
class SaverTest : public testing::Test {
protected:
    SaverTest() {
        static const bool storeIsInPlace = [] {
            platform::setPreferencesStore(platform::makeMemoryPreferencesStore());
            return true;
        }();
        EXPECT_TRUE(storeIsInPlace);
        journal->setPrefix("");
        platform::setSystemLogSink([](std::string_view) {});
        std::ofstream(bundle.directory() / "default.metallib") << "library";
        QZLForgetMacOsVersion();
        defaults().reset();
    }

    ~SaverTest() override {
        defaults().reset();
        QZLForgetMacOsVersion();
        platform::setSystemLogSink({});
    }

    static QZLDefaultsManager& defaults() { return QZLDefaultsManager::sharedInstance(); }

    /// With the fixture's journal.
    template <typename Renderer = QZLCirraneRenderer>
    std::shared_ptr<Renderer> makeRenderer() {
        auto renderer = QZLMakeRenderer<Renderer>();
        renderer->setJournal(journal);
        return renderer;
    }

    std::optional<platform::Error> attach(QZLCirraneRenderer& renderer) {
        return renderer.attachToView(view, false, 0, nullptr);
    }

    std::vector<std::string> journalLines() const {
        std::istringstream text(journal->accumulatedMessages());
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line);
        }
        return lines;
    }

    fake::Clock clock;
    fake::Bundle bundle{
        {{"Localizable", {{"QZL_ERROR_MEMORY", "Out of memory."}}},
         {"Vistashade", {{"QZL_JOURNAL_MESSAGE_FORMAT", "%@%@\n"}, {"QZL_JOURNAL_LOG_FORMAT", "%@%@%@"}}}}};
    fake::ScopedGpu gpu;
    std::shared_ptr<fake::HostView> view = std::make_shared<fake::HostView>();
    std::shared_ptr<QZLJournal> journal = std::make_shared<QZLJournal>();
};

/// Gives a fixed sequence, over and over, and notes what was asked of it; in force for the life of this object.
class RecordedRandom final : public platform::RandomGenerator {
public:
    explicit RecordedRandom(std::vector<std::int64_t> sequence) : _sequence(std::move(sequence)) {
        platform::setRandomGenerator(this);
    }
    ~RecordedRandom() override { platform::setRandomGenerator(nullptr); }

    void seed(std::uint32_t value) override { seeds.push_back(value); }
    std::int64_t next() override { return _sequence[draws++ % _sequence.size()]; }

    std::vector<std::uint32_t> seeds;
    std::size_t draws = 0;

private:
    std::vector<std::int64_t> _sequence;
};

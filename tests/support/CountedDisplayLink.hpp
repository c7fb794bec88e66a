#pragma once

#include "platform/DisplayLink.hpp"
#include "platform/HostView.hpp"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

namespace fake {

/// How many refreshes of a link have begun, and how many have returned.
struct RefreshCounts {
    std::atomic<int> begun = 0;
    std::atomic<int> returned = 0;
};

/// A real link, with its thread, that counts its refreshes.
class CountedDisplayLink final : public platform::DisplayLink {
public:
    CountedDisplayLink(std::unique_ptr<platform::DisplayLink> link, std::shared_ptr<RefreshCounts> counts)
        : _refresh(std::make_unique<Refresh>(Refresh{std::move(counts)})), _link(std::move(link)) {}

    platform::RefreshPeriod nominalOutputVideoRefreshPeriod() const override {
        return _link->nominalOutputVideoRefreshPeriod();
    }
    int setOutputCallback(OutputCallback callback, void* context) override {
        _refresh->callback = callback;
        _refresh->context = context;
        return _link->setOutputCallback(&Refresh::run, _refresh.get());
    }
    int start() override { return _link->start(); }
    int stop() override { return _link->stop(); }

private:
    struct Refresh {
        std::shared_ptr<RefreshCounts> counts;
        OutputCallback callback = nullptr;
        void* context = nullptr;

        static int run(platform::DisplayLink* link, const platform::DisplayTime* now,
                       const platform::DisplayTime* outputTime, std::uint64_t flagsIn, std::uint64_t* flagsOut,
                       void* context) {
            const auto* refresh = static_cast<const Refresh*>(context);
            const std::shared_ptr<RefreshCounts> counts = refresh->counts;
            ++counts->begun;
            const int result = refresh->callback(link, now, outputTime, flagsIn, flagsOut, refresh->context);
            ++counts->returned;  // the last touch, so that whoever has seen it may let go of all
            return result;
        }
    };

    std::unique_ptr<Refresh> _refresh;  // outlives the link, whose thread uses it
    std::unique_ptr<platform::DisplayLink> _link;
};

/// A view whose display refreshes a thousand times a second, on a link that does not wait long for a stuck callback.
class RefreshingView final : public platform::HostView {
public:
    std::shared_ptr<RefreshCounts> refreshes = std::make_shared<RefreshCounts>();
    std::chrono::milliseconds stopTimeout{10};

    platform::Rect bounds() const override { return {0, 0, 16, 16}; }
    platform::Rect convertRectToBacking(const platform::Rect& rect) const override { return rect; }
    std::optional<std::uint32_t> screenNumber() const override { return 1; }
    int createDisplayLink(std::uint32_t, std::unique_ptr<platform::DisplayLink>& link) override {
        link = std::make_unique<CountedDisplayLink>(platform::makeTimerDisplayLink({1, 1000}, stopTimeout), refreshes);
        return platform::displayLinkSuccess;
    }
    void setLayer(std::shared_ptr<gpu::Layer>) override {}
    void setWantsLayer(bool) override {}
};

}  // namespace fake

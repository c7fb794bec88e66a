#pragma once

#include "tests/support/FakeGpu.hpp"
#include "tests/support/FakeSubmissions.hpp"

#include <atomic>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace fake {

/// What a fake GPU and everything made by it share. The lock guards all but the submissions, which have their own.
struct Gpu::State {
    /// How many were asked for so far, by kind.
    struct Counts {
        std::uint64_t commandBuffers = 0;
        std::uint64_t drawables = 0;
        std::uint64_t buffers = 0;
        std::uint64_t textures = 0;
        std::uint64_t renderPipelines = 0;
        std::uint64_t computePipelines = 0;
        std::uint64_t renderPassDescriptors = 0;
        std::uint64_t encoders = 0;
        std::uint64_t calls = 0;
        std::uint64_t commits = 0;
    };
    using Count = std::uint64_t Counts::*;
    using Failing = std::set<std::uint64_t> FaultPlan::*;

    void record(const std::string& call);
    /// Records the call and returns true; or, when it does not succeed or the plan wants it to fail, records it as
    /// failed and returns false.
    bool attempt(const std::string& call, bool succeeds = true);
    /// Counts one more of a kind; false when the plan wants this one to fail.
    bool next(Count count, Failing failing);
    /// Counts a commit; true when the plan loses the device over it.
    bool losesDeviceWithNextCommit();
    bool planSays(bool FaultPlan::*fault) const;
    /// Makes one of the fake's objects, which is counted as long as it lives.
    template <typename Object, typename... Arguments>
    std::shared_ptr<Object> make(Arguments&&... arguments) {
        auto object = std::make_unique<Object>(std::forward<Arguments>(arguments)...);
        ++*liveObjects;
        return {object.release(), [count = liveObjects](Object* made) {
                    delete made;
                    --*count;
                }};
    }

    mutable std::mutex mutex;
    FaultPlan plan;
    Counts counts;
    std::vector<std::string> calls;
    std::vector<Draw> draws;
    std::vector<std::pair<std::string, gpu::FunctionType>> functions;
    bool completesAtCommit = false;
    std::function<void(const gpu::Device&)> deviceWasLost;
    const std::shared_ptr<std::atomic<std::size_t>> liveObjects = std::make_shared<std::atomic<std::size_t>>(0);

    Submissions submissions;
};

}  // namespace fake

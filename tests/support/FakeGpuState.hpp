#pragma once

#include "tests/support/FakeGpu.hpp"
#include "tests/support/FakeSubmissions.hpp"

#include <functional>
#include <mutex>

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
        std::uint64_t commits = 0;
    };
    using Count = std::uint64_t Counts::*;
    using Failing = std::set<std::uint64_t> FaultPlan::*;

    void record(const std::string& call);
    /// Records the call and returns true, or records it as failed and returns false.
    bool attempt(const std::string& call, bool succeeds);
    /// Counts one more of a kind; false when the plan wants this one to fail.
    bool next(Count count, Failing failing);
    /// Counts a commit; true when the plan loses the device over it.
    bool losesDeviceWithNextCommit();
    bool planSays(bool FaultPlan::*fault) const;

    mutable std::mutex mutex;
    FaultPlan plan;
    Counts counts;
    std::vector<std::string> calls;
    std::vector<Draw> draws;
    std::vector<std::pair<std::string, gpu::FunctionType>> functions;
    bool completesAtCommit = false;
    std::function<void(const gpu::Device&)> deviceWasLost;

    Submissions submissions;
};

}  // namespace fake

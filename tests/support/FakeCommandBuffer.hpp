#pragma once

#include "platform/gpu/CommandBuffer.hpp"
#include "tests/support/FakeDevice.hpp"
#include "tests/support/FakeEncoders.hpp"
#include "tests/support/FakeSubmissions.hpp"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace fake {

/// Records what is encoded, and does the part of it that the fake can do when it completes.
class CommandBuffer final : public gpu::CommandBuffer, public std::enable_shared_from_this<CommandBuffer> {
public:
    using BoundBuffers = std::map<std::size_t, std::pair<std::shared_ptr<gpu::Buffer>, std::size_t>>;

    CommandBuffer(std::shared_ptr<Device> device, std::shared_ptr<Submissions::Line> line);

    void record(const std::string& call) { _device->state().record(call); }
    void addWork(std::function<void()> work) { _work.push_back(std::move(work)); }
    void addDraw(const Draw& draw, const BoundBuffers& buffers) { _draws.emplace_back(draw, buffers); }

    void schedule() { didSchedule(); }
    /// Does the work once, unless the device is lost.
    void work();
    void complete(bool succeeded);

private:
    gpu::RenderCommandEncoder* beginRenderPass(const gpu::RenderPassDescriptor& descriptor) override;
    gpu::ComputeCommandEncoder* beginComputePass() override;
    gpu::BlitCommandEncoder* beginBlitPass() override;
    void submit() override;
    void waitForGpu() override;
    void didAddScheduledHandler() override { record("addScheduledHandler"); }
    void didAddCompletedHandler() override { record("addCompletedHandler"); }
    void didPresent(const gpu::Drawable& drawable) override;

    bool attemptEncoder(const std::string& call);
    void keepDraws();

    const std::shared_ptr<Device> _device;
    const std::shared_ptr<Submissions::Line> _line;
    RenderEncoder _renderEncoder{*this};
    ComputeEncoder _computeEncoder{*this};
    BlitEncoder _blitEncoder{*this};
    std::vector<std::pair<Draw, BoundBuffers>> _draws;
    std::mutex _workMutex;
    std::vector<std::function<void()>> _work;
};

class CommandQueue final : public gpu::CommandQueue {
public:
    explicit CommandQueue(const std::shared_ptr<Device>& device);

private:
    std::shared_ptr<gpu::CommandBuffer> makeCommandBuffer() override;

    std::shared_ptr<Submissions::Line> _line;
};

}  // namespace fake

#include "benchmarks/frameloop/BareLoop.hpp"

#include <chrono>
#include <thread>

namespace bench {
namespace {

using std::chrono::steady_clock;

}  // namespace

BareLoop::BareLoop(const std::string& deviceName, const std::filesystem::path& shaderLibrary, Size size)
    : _size(size), _device(deviceName, BareUseOfWindows::None), _renderer(_device, shaderLibrary, size) {
    for (BareImage& picture : _pictures) {
        picture = _device.makeImage(BarePipelines::pictureFormat, size,
                                    vk::ImageUsageFlagBits::eColorAttachment | vk::ImageUsageFlagBits::eTransferSrc);
    }
}

Run BareLoop::run(std::size_t frames, Pace pace, LastPicture lastPicture) {
    BareSky sky = _renderer.makeSky();
    Run result;
    result.cpuMicroseconds.reserve(frames);
    const std::uint64_t before = _renderer.submitted();
    const std::size_t atOnce = pace == Pace::SlotIsFree ? slots - 1 : slots;
    steady_clock::time_point firstCompleted;
    for (std::size_t frame = 0; frame < frames; ++frame) {
        if (frame >= atOnce) {
            _renderer.waitFor(before + frame - atOnce + 1);
            if (frame == atOnce) {
                firstCompleted = steady_clock::now();
                if (frameHooks().firstCompleted != nullptr) {
                    frameHooks().firstCompleted();
                }
            }
            if (pace == Pace::SlotIsFree) {
                std::this_thread::sleep_for(settling);
            }
        }
        if (frameHooks().begin != nullptr) {
            frameHooks().begin(frame);
        }
        const BareImage& picture = _pictures[frame % slots];
        const double start = threadCpuMicroseconds();
        _renderer.draw(sky.next(), {*picture.image, *picture.view, copySource});
        result.cpuMicroseconds.push_back(threadCpuMicroseconds() - start);
        if (frameHooks().end != nullptr) {
            frameHooks().end();
        }
    }
    _renderer.waitFor(_renderer.submitted());
    const std::chrono::duration<double> taken = steady_clock::now() - firstCompleted;
    result.framesPerSecond = static_cast<double>(frames - 1) / taken.count();
    if (lastPicture == LastPicture::Read) {
        result.lastPicture = readPicture(_pictures[(frames - 1) % slots]);
    }
    return result;
}

std::vector<std::byte> BareLoop::readPicture(const BareImage& picture) const {
    const std::size_t length = std::size_t{4} * _size.width * _size.height;
    const BareBuffer copy = _device.makeBuffer(length, vk::BufferUsageFlagBits::eTransferDst);
    _device.runAndWait([&](const vk::raii::CommandBuffer& commands) {
        commands.copyImageToBuffer(
            *picture.image, copySource.layout, *copy.buffer,
            vk::BufferImageCopy{.imageSubresource = {.aspectMask = vk::ImageAspectFlagBits::eColor, .layerCount = 1},
                                .imageExtent = {_size.width, _size.height, 1}});
    });
    return {copy.contents, copy.contents + length};
}

}  // namespace bench

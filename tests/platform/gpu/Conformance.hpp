#pragma once

#include "platform/gpu/Backend.hpp"
#include "tests/support/Waiting.hpp"

#include <gtest/gtest.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

/// A backend to hold against what all backends must do, and how a test drives it.
struct TestedBackend {
    std::string name;
    /// Makes it. What it hands to the function fails the test.
    std::function<std::shared_ptr<gpu::Backend>(std::function<void(std::string)>)> make;
    /// Lets everything committed so far complete, soon if not at once.
    std::function<void(gpu::Backend&)> step;
    std::function<void(gpu::Backend&, gpu::Device&)> loseDevice;

    friend void PrintTo(const TestedBackend& backend, std::ostream* stream) { *stream << backend.name; }
};

/// One backend with a device and a queue. Fails for every complaint of the backend, up to the end of its device.
class Conformance : public testing::TestWithParam<TestedBackend> {
protected:
    using Bytes = std::vector<std::byte>;

    Conformance();
    ~Conformance() override;
    void SetUp() override;
    void TearDown() override;

    /// Commits the buffer, so that `finish` waits for all its handlers.
    void commit(const std::shared_ptr<gpu::CommandBuffer>& buffer);
    /// Returns when all that `commit` was given has completed and run its handlers.
    void finish();

    std::shared_ptr<gpu::Texture> makeTexture(gpu::PixelFormat format, gpu::Extent size, gpu::TextureUsage usage,
                                              gpu::StorageMode storageMode = gpu::StorageMode::Private);
    /// Readable, and holding these bytes.
    std::shared_ptr<gpu::Texture> makeFilledTexture(gpu::PixelFormat format, gpu::Extent size, const Bytes& bytes);
    std::shared_ptr<gpu::Layer> makeLayer(gpu::Extent size);

    /// Draws nothing into the texture but its clear colour; commits.
    void clear(const std::shared_ptr<gpu::Texture>& texture, const gpu::ClearColor& color);
    /// A committed frame of one colour. Null when there was no drawable.
    std::shared_ptr<gpu::Drawable> drawFrame(gpu::Layer& layer, const gpu::ClearColor& color);
    /// The texture's bytes, rows without padding.
    Bytes readBack(const std::shared_ptr<gpu::Texture>& texture);

    std::shared_ptr<gpu::Backend> backend;
    std::shared_ptr<gpu::Device> device;
    std::shared_ptr<gpu::CommandQueue> queue;

private:
    std::mutex _mutex;
    std::condition_variable _changed;
    std::size_t _committed = 0;
    std::size_t _completed = 0;
    std::vector<std::string> _complaints;
};

/// Bytes that all differ from their neighbours, never of the same value in a row.
std::vector<std::byte> countingBytes(std::size_t count, unsigned seed = 1);

gpu::Region wholeOf(const gpu::Texture& texture);

/// A pass over one texture.
gpu::RenderPassDescriptor passInto(std::shared_ptr<gpu::Texture> texture, gpu::LoadAction loadAction,
                                   const gpu::ClearColor& color = {});

using fake::eventually;

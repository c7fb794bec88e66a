#pragma once

#include "platform/gpu/Backend.hpp"
#include "platform/gpu/CommandBuffer.hpp"
#include "platform/gpu/Layer.hpp"
#include "tests/support/EventLoop.hpp"

#include <QtWidgets/QApplication>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

/// Draws frames of one colour into a layer, on the real backend under validation, with a device that can present in
/// this application. Fails the test where validation has something to say. To be destroyed after what shows its layer.
class LayerPainter {
public:
    LayerPainter();
    ~LayerPainter();
    LayerPainter(const LayerPainter&) = delete;
    LayerPainter& operator=(const LayerPainter&) = delete;

    const std::shared_ptr<gpu::Layer>& layer() const { return _layer; }
    /// Draws one frame of this colour 0xRRGGBB and waits until it has been handed on to be shown.
    void draw(std::uint32_t color);

    std::vector<std::string> messages() const;
    /// That one may come; it is no failure.
    void forgetMessage(const std::string& message);

private:
    mutable std::mutex _mutex;
    std::vector<std::string> _messages;
    std::shared_ptr<gpu::Backend> _backend;
    std::shared_ptr<gpu::CommandQueue> _queue;
    std::shared_ptr<gpu::Layer> _layer;
};

using fake::eventuallyInLoop;

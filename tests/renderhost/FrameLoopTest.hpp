#pragma once

#include "tests/renderhost/RendererTest.hpp"

/// A renderer whose frames are presented one by one, on the test's own thread.
class FrameLoopTest : public RendererTest {
protected:
    void present(int frames) {
        for (int frame = 0; frame < frames; ++frame) {
            renderer->presentFrame();
        }
    }
};

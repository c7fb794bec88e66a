#include "tests/platform/gpu/Conformance.hpp"
#include "tests/support/FakeGpu.hpp"

namespace {

TestedBackend fakeBackend() {
    return {.name = "Fake",
            .make = [](const std::function<void(std::string)>&) { return std::make_shared<fake::Gpu>(); },
            .step = [](gpu::Backend& backend) { static_cast<fake::Gpu&>(backend).completeAll(); },
            .loseDevice =
                [](gpu::Backend& backend, gpu::Device& device) {
                    if (!device.isLost()) {
                        static_cast<fake::Gpu&>(backend).plan().lostAfterCommits = 0;
                        const auto queue = device.newCommandQueue();
                        queue->commandBuffer()->commit();
                    }
                }};
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Fake, Conformance, testing::Values(fakeBackend()));

#include "foundation/QZLError.hpp"
#include "tests/saver/SaverTest.hpp"

namespace {

/// What goes wrong, what is reported, and how many GPU objects were made before.
struct Failure {
    const char* what;
    void (*arrange)(fake::FaultPlan& plan);
    std::int64_t code;
    std::int64_t subCode;
    long madeBefore;
};

void PrintTo(const Failure& failure, std::ostream* out) {
    *out << failure.what;
}

class QZLCirraneRendererResources : public SaverTest, public testing::WithParamInterface<Failure> {};

TEST_P(QZLCirraneRendererResources, FirstFailureIsReportedAndEarlierResourcesStayUntilDetach) {
    GetParam().arrange(gpu->plan());
    const auto renderer = makeRenderer();
    const auto error = attach(*renderer);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), GetParam().code);
    EXPECT_EQ(QZLGetErrorSubCode(*error), GetParam().subCode);
    EXPECT_TRUE(renderer->isAttached()) << "the view, not the renderer, detaches after a failure of the saver's own";

    const std::weak_ptr<gpu::Device> device = renderer->layer()->device();
    const long usersBefore = device.use_count();  // every resource keeps its device alive
    renderer->detachFromView();
    EXPECT_GE(usersBefore - device.use_count(), GetParam().madeBefore);
    view->layer.reset();
    EXPECT_TRUE(device.expired());
}

using Plan = fake::FaultPlan;

INSTANTIATE_TEST_SUITE_P(
    All, QZLCirraneRendererResources,
    testing::Values(
        Failure{"no library", [](Plan& plan) { plan.noLibrary = true; }, 101, 1000, 0},
        Failure{"no colour vertex function", [](Plan& plan) { plan.missingFunctions = {"QZLColorVertexShader"}; }, 102,
                1000, 0},
        Failure{"no colour fragment function", [](Plan& plan) { plan.missingFunctions = {"QZLColorFragmentShader"}; },
                103, 1000, 0},
        Failure{"no colour pipeline", [](Plan& plan) { plan.failingRenderPipelines = {0}; }, 105, 1000, 0},
        Failure{"no light vertex function", [](Plan& plan) { plan.missingFunctions = {"QZLLightVertexShader"}; }, 102,
                1001, 1},
        Failure{"no light fragment function", [](Plan& plan) { plan.missingFunctions = {"QZLLightFragmentShader"}; },
                103, 1001, 1},
        Failure{"no light pipeline", [](Plan& plan) { plan.failingRenderPipelines = {1}; }, 105, 1001, 1},
        Failure{"no first colour style buffer", [](Plan& plan) { plan.failingBuffers = {0}; }, 108, 1002, 2},
        Failure{"no last colour style buffer", [](Plan& plan) { plan.failingBuffers = {2}; }, 108, 1002, 4},
        Failure{"no first light style buffer", [](Plan& plan) { plan.failingBuffers = {3}; }, 108, 1003, 5},
        Failure{"no last light style buffer", [](Plan& plan) { plan.failingBuffers = {5}; }, 108, 1003, 7},
        Failure{"no noise texture", [](Plan& plan) { plan.failingTextures = {0}; }, 107, 1004, 8},
        Failure{"no first colour texture", [](Plan& plan) { plan.failingTextures = {1}; }, 107, 1005, 9},
        Failure{"no last colour texture", [](Plan& plan) { plan.failingTextures = {3}; }, 107, 1005, 11},
        Failure{"no first height texture", [](Plan& plan) { plan.failingTextures = {4}; }, 107, 1006, 12},
        Failure{"no last height texture", [](Plan& plan) { plan.failingTextures = {6}; }, 107, 1006, 14},
        // Descriptor 0 is the base's own.
        Failure{"no first colour pass", [](Plan& plan) { plan.failingRenderPassDescriptors = {1}; }, 304, 1007, 15},
        Failure{"no last colour pass", [](Plan& plan) { plan.failingRenderPassDescriptors = {3}; }, 304, 1007, 15}));

TEST_F(QZLCirraneRendererResources, FailedAttachMayBeTriedAgain) {
    gpu->plan().failingTextures = {4};
    const auto renderer = makeRenderer();
    EXPECT_TRUE(attach(*renderer));
    renderer->detachFromView();
    EXPECT_FALSE(attach(*renderer));
}

/// Finds no memory for the noise.
class ForgetfulRenderer final : public QZLCirraneRenderer {
    std::unique_ptr<std::byte[]> allocateNoiseBytes(std::size_t length) override {
        EXPECT_EQ(length, 65536U);
        return nullptr;
    }
};

TEST_F(QZLCirraneRendererResources, NoMemoryForTheNoiseIsACodeOfItsOwn) {
    const auto renderer = makeRenderer<ForgetfulRenderer>();
    const auto error = attach(*renderer);
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), QZLVistashadeErrorDomain);
    EXPECT_EQ(error->code(), 1008);
    EXPECT_EQ(QZLGetErrorSubCode(*error), 0);
    EXPECT_EQ(error->localizedDescription(), "Out of memory.");
}

TEST_F(QZLCirraneRendererResources, NoMemoryForTheNoiseDrawsNoRandomNumbers) {
    RecordedRandom random({1});
    const auto renderer = makeRenderer<ForgetfulRenderer>();
    const std::size_t drawnBefore = random.draws;
    EXPECT_TRUE(attach(*renderer));
    EXPECT_EQ(random.draws, drawnBefore);
}

TEST_F(QZLCirraneRendererResources, NoiseTakesOneRandomNumberPerTexel) {
    RecordedRandom random({1});
    const auto renderer = makeRenderer();
    const std::size_t drawnBefore = random.draws;
    EXPECT_FALSE(attach(*renderer));
    EXPECT_EQ(random.draws - drawnBefore, 65536U);
}

}  // namespace

#include "saver/QZLCirraneSession.hpp"
#include "tests/saver/SaverTest.hpp"

#include <gmock/gmock.h>

#include <new>

extern "C" const platform::SaverModule* cirraneSaverModule() noexcept;

namespace {

using testing::Contains;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

class QZLCirraneSessionTest : public SaverTest {
protected:
    QZLCirraneSessionTest() {
        platform::setSystemLogSink([this](std::string_view line) { log.emplace_back(line); });
    }

    std::vector<std::string> log;
};

TEST_F(QZLCirraneSessionTest, JournalNamesTheScreenAndTheLogTheModule) {
    QZLCirraneSession session(view, false, 3);
    EXPECT_FALSE(session.startAnimation());
    EXPECT_THAT(session.journal().accumulatedMessages(), StartsWith("[Screen 3] Seed: 0x"));
    EXPECT_THAT(log, Contains(StartsWith("Cirrane: [Screen 3] Seed: 0x")));
}

TEST_F(QZLCirraneSessionTest, JournalNamesThePreview) {
    QZLCirraneSession session(view, true, 0);
    EXPECT_FALSE(session.startAnimation());
    EXPECT_THAT(session.journal().accumulatedMessages(), StartsWith("[Preview] Seed: 0x"));
}

TEST_F(QZLCirraneSessionTest, AttachesOnceOverSeveralStarts) {
    QZLCirraneSession session(view, false, 0);
    EXPECT_EQ(session.intermediateWidth(), 0U);
    EXPECT_FALSE(session.startAnimation());
    EXPECT_TRUE(view->displayLink->running);
    session.stopAnimation();
    EXPECT_FALSE(view->displayLink->running);
    EXPECT_FALSE(session.startAnimation());
    EXPECT_TRUE(view->displayLink->running);

    const std::string journalText = session.journal().accumulatedMessages();
    const std::string attached = "Attached Metal renderer successfully.";
    EXPECT_EQ(journalText.find(attached), journalText.rfind(attached));
    EXPECT_EQ(session.seed(), session.renderer().seed());
    EXPECT_EQ(session.intermediateWidth(), 640U);
    EXPECT_EQ(session.intermediateHeight(), 480U);
}

TEST_F(QZLCirraneSessionTest, DetachedSessionTakesTheNewSizeAtItsNextStart) {
    QZLCirraneSession session(view, false, 0);
    EXPECT_FALSE(session.startAnimation());
    session.stopAnimation();
    session.detach();
    EXPECT_FALSE(view->displayLink->exists);
    view->viewBounds = {0, 0, 320, 200};
    EXPECT_FALSE(session.startAnimation());
    EXPECT_EQ(session.intermediateWidth(), 320U);
}

TEST_F(QZLCirraneSessionTest, FailedStartReportsTheErrorAndDetaches) {
    gpu->plan().failingTextures = {0};
    QZLCirraneSession session(view, false, 0);
    const auto error = session.startAnimation();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code(), 107);
    EXPECT_FALSE(session.renderer().isAttached());
    EXPECT_FALSE(view->displayLink->running);
    EXPECT_FALSE(session.startAnimation()) << "the second try finds memory";
}

/// Throws where the noise is made, which is when the base has attached.
class ThrowingRandom final : public platform::RandomGenerator {
public:
    ThrowingRandom() { platform::setRandomGenerator(this); }
    ~ThrowingRandom() override { platform::setRandomGenerator(nullptr); }

    void seed(std::uint32_t) override {}
    std::int64_t next() override { throw std::bad_alloc(); }
};

TEST_F(QZLCirraneSessionTest, StartThatThrowsReportsTheLackOfMemoryAndDetaches) {
    QZLCirraneSession session(view, false, 0);
    {
        const ThrowingRandom random;
        const auto error = session.startAnimation();
        ASSERT_TRUE(error);
        EXPECT_EQ(error->code(), 1008);
        EXPECT_EQ(error->localizedDescription(), "Out of memory.");
    }
    EXPECT_THAT(session.journal().accumulatedMessages(), HasSubstr("Attached Metal renderer successfully."));
    EXPECT_FALSE(session.renderer().isAttached());
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_FALSE(session.startAnimation()) << "the second try finds memory";
    EXPECT_TRUE(view->displayLink->running);
}

TEST_F(QZLCirraneSessionTest, DestroyingStopsAndDetaches) {
    {
        QZLCirraneSession session(view, false, 0);
        EXPECT_FALSE(session.startAnimation());
    }
    EXPECT_FALSE(view->displayLink->exists);
    EXPECT_THAT(log, Contains(EndsWith("Stopped animation.")));
    EXPECT_THAT(log.back(), EndsWith("Detached Metal renderer."));
}

TEST_F(QZLCirraneSessionTest, StoppingIsJournalledOncePerStart) {
    {
        QZLCirraneSession session(view, false, 0);
        session.stopAnimation();
        EXPECT_THAT(log, testing::IsEmpty()) << "it has not started yet";
        EXPECT_FALSE(session.startAnimation());
        session.stopAnimation();
        session.stopAnimation();
    }
    EXPECT_THAT(log, Contains(EndsWith("Stopped animation.")).Times(1));
}

TEST_F(QZLCirraneSessionTest, DestroyingOneThatNeverStartedSaysNothing) {
    { const QZLCirraneSession session(view, false, 0); }
    EXPECT_TRUE(log.empty());
}

TEST_F(QZLCirraneSessionTest, ModuleOffersTheCurrentVersionAndItsSessions) {
    const platform::SaverModule* module = cirraneSaverModule();
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(module->version, platform::SaverModule::currentVersion);
    const auto session = module->createSession(view, false, 0);
    ASSERT_NE(session, nullptr);
    EXPECT_FALSE(session->startAnimation());
    EXPECT_EQ(session->intermediateHeight(), 480U);
}

TEST_F(QZLCirraneSessionTest, ChangedSettingsReachEveryLiveSession) {
    const QZLCirraneSession first(view, false, 0);
    const QZLCirraneSession second(std::make_shared<fake::HostView>(), false, 1);
    { const QZLCirraneSession gone(std::make_shared<fake::HostView>(), false, 2); }
    defaults().setColors(0.875F);
    EXPECT_EQ(first.renderer().style().colors, 0.4F);
    cirraneSaverModule()->settingsChanged();
    EXPECT_EQ(first.renderer().style().colors, 0.875F);
    EXPECT_EQ(second.renderer().style().colors, 0.875F);
}

}  // namespace

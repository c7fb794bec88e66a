#include "platform/ui/FrameAnswers.hpp"

#include <gtest/gtest.h>

namespace {

using platform::FrameAnswers;
using namespace std::chrono_literals;

constexpr FrameAnswers::Time start{};

TEST(FrameAnswers, NothingIsOverdueBeforeAQuestion) {
    FrameAnswers answers;
    EXPECT_FALSE(answers.isWaiting());
    EXPECT_FALSE(answers.isOverdue(0, start));
    EXPECT_FALSE(answers.isOverdue(100, start + 1h));
}

TEST(FrameAnswers, AQuestionThatNoFrameTookAlongIsNeverOverdue) {
    FrameAnswers answers;
    answers.asked(7);
    EXPECT_TRUE(answers.isWaiting());
    EXPECT_FALSE(answers.isOverdue(7, start));
    EXPECT_FALSE(answers.isOverdue(8, start + 1h)) << "that frame may have left before the question";
    EXPECT_FALSE(answers.isOverdue(8, start + 2h));
}

TEST(FrameAnswers, AQuestionThatHasGoneOutIsOverdueAfterASecond) {
    FrameAnswers answers;
    answers.asked(7);
    EXPECT_FALSE(answers.isOverdue(9, start));
    EXPECT_FALSE(answers.isOverdue(60, start + 999ms));
    EXPECT_TRUE(answers.isOverdue(60, start + 1s));
    EXPECT_TRUE(answers.isOverdue(60, start + 1h)) << "also when frames have ceased meanwhile";
}

TEST(FrameAnswers, AnAnswerEndsTheWaiting) {
    FrameAnswers answers;
    answers.asked(0);
    EXPECT_FALSE(answers.isOverdue(2, start));
    EXPECT_TRUE(answers.isOverdue(2, start + 1s));
    answers.answered();
    EXPECT_FALSE(answers.isWaiting());
    EXPECT_FALSE(answers.isOverdue(100, start + 1h));
}

TEST(FrameAnswers, TimeBeginsAnewWithEachQuestion) {
    FrameAnswers answers;
    answers.asked(0);
    EXPECT_FALSE(answers.isOverdue(2, start));
    answers.answered();
    answers.asked(2);
    EXPECT_FALSE(answers.isOverdue(4, start + 10s));
    EXPECT_FALSE(answers.isOverdue(4, start + 10s + 999ms));
    EXPECT_TRUE(answers.isOverdue(4, start + 11s));
}

}  // namespace

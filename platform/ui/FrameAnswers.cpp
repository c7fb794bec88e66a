#include "platform/ui/FrameAnswers.hpp"

namespace platform {

void FrameAnswers::asked(std::uint64_t framesShown) {
    _framesWhenAsked = framesShown;
    _goneOut.reset();
}

bool FrameAnswers::isOverdue(std::uint64_t framesShown, Time now) {
    // A frame that was being shown when the question was asked may have left without it and been counted since.
    constexpr std::uint64_t framesUntilCertain = 2;
    if (!isWaiting() || framesShown - *_framesWhenAsked < framesUntilCertain) {
        return false;
    }
    if (!_goneOut.has_value()) {
        _goneOut = now;
    }
    return now - *_goneOut >= patience;
}

}  // namespace platform

#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace platform {

/// Judges from a compositor's answers to "when shall the next frame be drawn?" whether a surface can be seen. A
/// question goes out with the next frame that is shown, and is answered when the compositor draws the surface; never
/// while nobody can see it. One question at a time.
class FrameAnswers {
public:
    using Time = std::chrono::steady_clock::time_point;
    /// How long an answer may take before it counts as missing.
    static constexpr std::chrono::seconds patience{1};

    /// `framesShown` counts the frames of this surface.
    void asked(std::uint64_t framesShown);
    void answered() { _framesWhenAsked.reset(); }

    bool isWaiting() const { return _framesWhenAsked.has_value(); }
    /// True when the question has gone out and has been left without an answer for too long. To be asked again and
    /// again: time counts from the first call that finds the question gone out.
    bool isOverdue(std::uint64_t framesShown, Time now);

private:
    std::optional<std::uint64_t> _framesWhenAsked;
    std::optional<Time> _goneOut;
};

}  // namespace platform

#pragma once

#include <chrono>
#include <deque>

namespace host {

/// Tells a pointer that somebody moves from one that merely trembles, or that a window was mapped under. Main thread.
class PointerTravel {
public:
    /// Pixels within `window` that are taken for an intention.
    static constexpr double distance = 10.0;
    static constexpr std::chrono::milliseconds window{500};

    /// The pointer is at that place now, in pixels of the desktop. True when it has moved farther than the distance
    /// from where it was at some moment within the window. The first place that is told of is no movement.
    bool movedTo(double x, double y, std::chrono::milliseconds now);

    /// The next place is the first one again.
    void forget() { _places.clear(); }

private:
    struct Place {
        double x;
        double y;
        std::chrono::milliseconds time;
    };
    std::deque<Place> _places;
};

}  // namespace host

#pragma once

namespace platform {

/// A rectangle with its origin at the bottom left, in points or in pixels as the place says.
struct Rect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    bool operator==(const Rect&) const = default;
};

}  // namespace platform

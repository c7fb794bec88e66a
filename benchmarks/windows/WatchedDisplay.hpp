#pragma once

#include <xcb/damage.h>
#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace bench {

/// What others draw on the X display, seen through the Damage extension. One window of the size of interest at a time.
class WatchedDisplay {
public:
    using Time = std::chrono::steady_clock::time_point;

    /// Throws std::runtime_error when there is no display or it lacks the extension.
    WatchedDisplay(std::uint16_t width, std::uint16_t height);

    /// How often the window's area has been drawn over since the last call: frames, as each is drawn once and whole,
    /// in however many parts.
    double takeFrames();
    /// When something brighter than that (0 to 255) came to stand in the middle row of the window; nothing when it has
    /// not by the deadline.
    std::optional<Time> waitForPicture(int brightness, Time deadline);
    /// False when the window is still there at the deadline.
    bool waitForEnd(Time deadline);

private:
    struct Closer {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    struct Position {
        std::int16_t x;
        std::int16_t y;
    };

    void drain();
    std::optional<Position> findWindow() const;
    bool showsPicture(int brightness) const;

    std::unique_ptr<xcb_connection_t, Closer> _connection;
    xcb_window_t _root = 0;
    std::uint8_t _damageEvent = 0;
    std::uint16_t _width;
    std::uint16_t _height;
    double _damagedPixels = 0.0;
};

}  // namespace bench

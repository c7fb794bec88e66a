#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a person sees on a screen, in its pixels.
struct Screenshot {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> bytes;  ///< red, green, blue

    /// 0xRRGGBB; nothing outside.
    std::optional<std::uint32_t> pixel(int x, int y) const;
};

/// A Wayland session of its own: sway with one screen of 800 x 600, drawn in software and shown nowhere. Windows float
/// at 100,80 without border. WAYLAND_DISPLAY and the like name it from then on. Throws when it does not start. As sway
/// runs under no privileged user, root starts it as "nobody".
class SwaySession {
public:
    SwaySession();
    ~SwaySession();
    SwaySession(const SwaySession&) = delete;
    SwaySession& operator=(const SwaySession&) = delete;

    /// Carries out a command of swaymsg's language; false when sway refuses.
    bool command(std::string_view text) const;
    Screenshot screenshot() const;
    /// While frozen it answers nobody.
    void freeze() const;
    void thaw() const;

private:
    void start();
    void waitForSockets();

    std::filesystem::path _directory;
    pid_t _pid = -1;
};

#include "SwaySession.hpp"

#include "tests/support/Waiting.hpp"

#include <pwd.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

namespace {

constexpr const char* configuration = R"(
xwayland disable
output HEADLESS-1 resolution 800x600 position 0 0
for_window [app_id=".*"] floating enable, border none, move absolute position 100 80
focus_follows_mouse no
)";

std::string outputOf(const std::string& command) {
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    char buffer[65536];
    for (std::size_t count = 0; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
        output.append(buffer, count);
    }
    pclose(pipe);
    return output;
}

std::filesystem::path firstFileBeginningWith(std::string_view start, const std::filesystem::path& directory) {
    for (const auto& entry : std::filesystem::directory_iterator(directory)) {
        const std::string name = entry.path().filename();
        if (name.starts_with(start) && !name.ends_with(".lock")) {
            return entry.path();
        }
    }
    return {};
}

}  // namespace

std::optional<std::uint32_t> Screenshot::pixel(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) {
        return std::nullopt;
    }
    const std::uint8_t* color =
        &bytes[(static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)) * 3];
    return static_cast<std::uint32_t>(color[0] << 16 | color[1] << 8 | color[2]);
}

SwaySession::SwaySession() {
    char name[] = "/tmp/cirrane-sway-XXXXXX";
    if (mkdtemp(name) == nullptr) {
        throw std::runtime_error("no folder for a Wayland session");
    }
    _directory = name;
    std::ofstream(_directory / "config") << configuration;
    start();
    waitForSockets();
}

SwaySession::~SwaySession() {
    thaw();
    kill(_pid, SIGTERM);
    waitpid(_pid, nullptr, 0);
    std::filesystem::remove_all(_directory);
}

void SwaySession::start() {
    const bool isRoot = geteuid() == 0;
    const passwd* const nobody = isRoot ? getpwnam("nobody") : nullptr;
    if (nobody != nullptr && chown(_directory.c_str(), nobody->pw_uid, nobody->pw_gid) != 0) {
        throw std::runtime_error("no folder for an unprivileged user");
    }
    _pid = fork();
    if (_pid != 0) {
        return;
    }
    setenv("XDG_RUNTIME_DIR", _directory.c_str(), 1);
    setenv("WLR_BACKENDS", "headless", 1);
    setenv("WLR_RENDERER", "pixman", 1);
    setenv("WLR_LIBINPUT_NO_DEVICES", "1", 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    if (freopen((_directory / "log").c_str(), "w", stderr) == nullptr) {
        _exit(1);
    }
    if (nobody != nullptr && (setgid(nobody->pw_gid) != 0 || setuid(nobody->pw_uid) != 0)) {
        _exit(1);
    }
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    execlp("sway", "sway", "-c", (_directory / "config").c_str(), nullptr);
    _exit(1);
}

void SwaySession::waitForSockets() {
    std::filesystem::path display;
    std::filesystem::path control;
    const bool started = fake::eventually([&] {
        display = firstFileBeginningWith("wayland-", _directory);
        control = firstFileBeginningWith("sway-ipc", _directory);
        return !display.empty() && !control.empty() && waitpid(_pid, nullptr, WNOHANG) == 0;
    });
    if (!started) {
        throw std::runtime_error("sway does not start");
    }
    setenv("XDG_RUNTIME_DIR", _directory.c_str(), 1);
    setenv("WAYLAND_DISPLAY", display.filename().c_str(), 1);
    setenv("SWAYSOCK", control.c_str(), 1);
}

bool SwaySession::command(std::string_view text) const {
    return outputOf("swaymsg -r '" + std::string(text) + "'").find("\"success\": true") != std::string::npos;
}

Screenshot SwaySession::screenshot() const {
    const std::string file = outputOf("grim -t ppm -");
    Screenshot shot;
    int headerLength = 0;
    if (std::sscanf(file.c_str(), "P6 %d %d 255%n", &shot.width, &shot.height, &headerLength) != 2) {
        return {};
    }
    shot.bytes.assign(file.begin() + headerLength + 1, file.end());
    return shot;
}

void SwaySession::freeze() const {
    kill(_pid, SIGSTOP);
}

void SwaySession::thaw() const {
    kill(_pid, SIGCONT);
}

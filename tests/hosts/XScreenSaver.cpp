#include "tests/hosts/XScreenSaver.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

namespace hosts {
namespace {

bool isOnThisDisplay(const std::filesystem::path& process) {
    std::ifstream file(process / "environ");
    const std::string environment((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    const std::string entry = std::string("DISPLAY=") + std::getenv("DISPLAY");
    const std::string zero(1, '\0');
    // The daemon adds the number of the screen.
    return (zero + environment).find(zero + entry + zero) != std::string::npos ||
           (zero + environment).find(zero + entry + ".0" + zero) != std::string::npos;
}

}  // namespace

XScreenSaver::XScreenSaver(const std::string& line) {
    std::ofstream(_home.path() / ".xscreensaver") << "mode: one\n"
                                                     "selected: 0\n"
                                                     "lock: False\n"
                                                     "splash: False\n"
                                                     "fade: False\n"
                                                     "unfade: False\n"
                                                     "dpmsEnabled: False\n"
                                                     "timeout: 0:10:00\n"
                                                     "cycle: 0:10:00\n"
                                                     "programs: \\\n  "
                                                  << line << " \\n\\\n";
    _daemon = std::make_unique<fake::Process>(std::vector<std::string>{"/usr/bin/xscreensaver", "--no-splash"},
                                              _home.environment(), fake::Output::Files);
    EXPECT_TRUE(fake::eventually([&] { return send("-time").exitStatus == 0; })) << "the daemon did not start";
}

XScreenSaver::~XScreenSaver() {
    command("-exit");
    EXPECT_TRUE(_daemon->waitForEnd()) << "the daemon did not end";
    EXPECT_TRUE(fake::eventually([] { return runningSavers().empty(); })) << "it left savers behind";
}

fake::ProcessEnd XScreenSaver::send(const std::string& request) const {
    return runTool({"/usr/bin/xscreensaver-command", request}, _home.environment());
}

void XScreenSaver::command(const std::string& request) const {
    const auto end = send(request);
    EXPECT_EQ(end.exitStatus, 0) << request << ": " << end.standardError;
}

std::vector<pid_t> runningSavers() {
    std::vector<pid_t> found;
    std::error_code error;
    for (const auto& process : std::filesystem::directory_iterator("/proc")) {
        // What has ended has no executable any more; what is another user's is not for us to see.
        if (std::filesystem::read_symlink(process.path() / "exe", error) == program() && !error &&
            isOnThisDisplay(process.path())) {
            found.push_back(static_cast<pid_t>(std::stoi(process.path().filename().string())));
        }
    }
    return found;
}

}  // namespace hosts

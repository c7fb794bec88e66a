#include "tests/hosts/Home.hpp"

#include <gtest/gtest.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <iterator>
#include <sstream>

namespace hosts {
namespace {

/// What all threads of a process have used so far.
double processorSeconds(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(file, text);
    std::istringstream fields(text.substr(text.rfind(')') + 1));
    constexpr int fieldsBefore = 11;  // from the third, the state, to the fourteenth, the time
    std::string skipped;
    for (int i = 0; i < fieldsBefore; ++i) {
        fields >> skipped;
    }
    double inProgram = 0.0;
    double inSystem = 0.0;
    fields >> inProgram >> inSystem;
    return (inProgram + inSystem) / static_cast<double>(sysconf(_SC_CLK_TCK));
}

}  // namespace

Home::Home() {
    std::filesystem::create_directory(runtimeDirectory());
    std::filesystem::permissions(runtimeDirectory(), std::filesystem::perms::owner_all);
}

std::vector<std::string> Home::environment() const {
    return {"HOME=" + path().string(), "XDG_RUNTIME_DIR=" + runtimeDirectory().string()};
}

void Home::storeSetting(const std::string& setting) const {
    std::filesystem::create_directory(path() / ".config");
    std::ofstream(path() / ".config" / "org.example.cirrane.conf") << "[General]\n" << setting << '\n';
}

bool Home::holdsErrorReport() const {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path())) {
        if (entry.path().extension() == ".conf") {
            std::ifstream file(entry.path());
            const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
            if (text.find("SavedErrorCode") != std::string::npos) {
                return true;
            }
        }
    }
    return false;
}

std::vector<std::string> operator+(std::vector<std::string> a, const std::vector<std::string>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

std::vector<std::string> endingWithTest(const std::vector<std::string>& command) {
    return std::vector<std::string>{"/usr/bin/setpriv", "--pdeathsig", "TERM"} + command;
}

fake::ProcessEnd runTool(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
    const auto end = fake::Process(command, environment).waitForEnd(std::chrono::seconds(20));
    EXPECT_TRUE(end) << command.front() << " did not end";
    return end.value_or(fake::ProcessEnd{});
}

bool becomesIdle(pid_t process) {
    constexpr double fewPercent = 0.05;
    constexpr std::chrono::milliseconds span{500};
    const auto idleForASpan = [&] {
        const double before = processorSeconds(process);
        const auto end = std::chrono::steady_clock::now() + span;
        fake::eventually([&] { return std::chrono::steady_clock::now() > end; });
        return processorSeconds(process) - before < fewPercent * std::chrono::duration<double>(span).count();
    };
    return fake::eventually(idleForASpan, std::chrono::seconds(10));
}

}  // namespace hosts

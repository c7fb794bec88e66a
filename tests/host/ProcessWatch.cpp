// What can be seen of a process from outside.
#include "tests/host/Process.hpp"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <system_error>

namespace fake {
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

bool Process::hasLoaded(const std::string& file) const {
    std::ifstream mappings("/proc/" + std::to_string(identifier()) + "/maps");
    std::string line;
    while (std::getline(mappings, line)) {
        if (line.find(file) != std::string::npos) {
            return true;
        }
    }
    return false;
}

bool Process::isDrawing() const {
    std::error_code gone;
    const auto threads = std::filesystem::directory_iterator("/proc/" + std::to_string(identifier()) + "/task", gone);
    return std::ranges::any_of(threads, [](const std::filesystem::directory_entry& thread) {
        std::string name;
        std::getline(std::ifstream(thread.path() / "comm"), name);
        return name == "display-link";
    });
}

bool becomesIdle(pid_t process) {
    constexpr double fewPercent = 0.05;
    constexpr std::chrono::milliseconds span{500};
    const auto idleForASpan = [&] {
        const double before = processorSeconds(process);
        const auto end = std::chrono::steady_clock::now() + span;
        eventually([&] { return std::chrono::steady_clock::now() > end; });
        return processorSeconds(process) - before < fewPercent * std::chrono::duration<double>(span).count();
    };
    return eventually(idleForASpan, std::chrono::seconds(10));
}

}  // namespace fake

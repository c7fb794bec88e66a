#include "benchmarks/windows/ChildProcess.hpp"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <ctime>
#include <stdexcept>
#include <utility>

namespace bench {

ChildProcess::ChildProcess(std::vector<std::string> command) {
    std::vector<char*> arguments;
    arguments.reserve(command.size() + 1);
    for (std::string& word : command) {
        arguments.push_back(word.data());
    }
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    _started = std::chrono::steady_clock::now();
    const int failure = posix_spawn(&_process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failure != 0) {
        throw std::runtime_error("cannot start " + command.front());
    }
}

ChildProcess::~ChildProcess() {
    terminate();
}

double ChildProcess::cpuSeconds() const {
    clockid_t clock = 0;
    timespec time{};
    if (clock_getcpuclockid(_process, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        return 0.0;
    }
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

bool ChildProcess::terminate() {
    if (_process == 0) {
        return false;
    }
    const pid_t process = std::exchange(_process, 0);
    int status = 0;
    kill(process, SIGTERM);
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM;
}

}  // namespace bench

#include "tests/host/Process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

extern char** environ;  // NOLINT

namespace fake {
namespace {

std::vector<std::string> changedEnvironment(const std::vector<std::string>& changes) {
    const auto nameOf = [](const std::string& entry) { return entry.substr(0, entry.find('=')); };
    std::vector<std::string> result;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        bool isChanged = false;
        for (const std::string& change : changes) {
            isChanged = isChanged || nameOf(change) == nameOf(*entry);
        }
        if (!isChanged) {
            result.emplace_back(*entry);
        }
    }
    for (const std::string& change : changes) {
        if (change.find('=') != std::string::npos) {
            result.push_back(change);
        }
    }
    return result;
}

std::vector<char*> pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) {
        result.push_back(text.data());
    }
    result.push_back(nullptr);
    return result;
}

void drain(int fileDescriptor, std::string& into) {
    std::array<char, 4096> bytes;
    ssize_t count = 0;
    while ((count = read(fileDescriptor, bytes.data(), bytes.size())) > 0) {
        into.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

Process::Process(const std::vector<std::string>& command, const std::vector<std::string>& environment) {
    std::array<int, 2> output{};
    std::array<int, 2> error{};
    if (pipe2(output.data(), O_CLOEXEC) != 0 || pipe2(error.data(), O_CLOEXEC) != 0) {
        ADD_FAILURE() << "no pipes";
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, output[1], 1);
    posix_spawn_file_actions_adddup2(&actions, error[1], 2);

    std::vector<std::string> arguments = command;
    std::vector<std::string> variables = changedEnvironment(environment);
    pid_t started = -1;
    const int result = posix_spawn(&started, arguments.front().c_str(), &actions, nullptr, pointers(arguments).data(),
                                   pointers(variables).data());
    if (result == 0) {
        _pid = started;
    } else {
        ADD_FAILURE() << arguments.front() << " cannot be started: " << std::generic_category().message(result);
    }
    posix_spawn_file_actions_destroy(&actions);
    close(output[1]);
    close(error[1]);
    _outputPipe = output[0];
    _errorPipe = error[0];
    fcntl(_outputPipe, F_SETFL, O_NONBLOCK);
    fcntl(_errorPipe, F_SETFL, O_NONBLOCK);
}

Process::~Process() {
    if (isRunning()) {
        kill(*_pid, SIGKILL);
        waitpid(*_pid, nullptr, 0);
    }
    closeOutput();
}

void Process::sendSignal(int signal) const {
    if (_pid && !_status) {
        kill(*_pid, signal);
    }
}

bool Process::isRunning() {
    int status = 0;
    if (_pid && !_status && waitpid(*_pid, &status, WNOHANG) == *_pid) {
        _status = status;
    }
    return _pid && !_status;
}

const std::string& Process::standardOutput() {
    readOutput();
    return _end.standardOutput;
}

void Process::closeOutput() {
    for (int* pipe : {&_outputPipe, &_errorPipe}) {
        if (*pipe >= 0) {
            close(std::exchange(*pipe, -1));
        }
    }
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

void Process::readOutput() {
    drain(_outputPipe, _end.standardOutput);
    drain(_errorPipe, _end.standardError);
}

std::optional<ProcessEnd> Process::waitForEnd(std::chrono::milliseconds deadline) {
    const bool ended = eventually(
        [this] {
            readOutput();
            return !isRunning();
        },
        deadline);
    if (!ended || !_status) {
        return {};
    }
    readOutput();
    if (WIFEXITED(*_status)) {
        _end.exitStatus = WEXITSTATUS(*_status);
    } else {
        _end.signal = WTERMSIG(*_status);
    }
    return _end;
}

std::string cirraneProgram() {
    return CIRRANE_PROGRAM;
}

ProcessEnd runCirrane(const std::vector<std::string>& arguments, const std::vector<std::string>& environment) {
    std::vector<std::string> command{cirraneProgram()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    auto end = Process(command, environment).waitForEnd(std::chrono::seconds(100));
    EXPECT_TRUE(end) << "it did not end";
    return end.value_or(ProcessEnd{});
}

}  // namespace fake

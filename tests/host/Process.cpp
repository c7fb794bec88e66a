#include "tests/host/Process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <iostream>
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

/// The two ends of what a process writes: where the test reads it, and where the process writes it.
struct Stream {
    int reading = -1;
    int writing = -1;
};

std::optional<Stream> makeStream(Output output) {
    if (output == Output::Files) {
        const int file = memfd_create("output", MFD_CLOEXEC);
        const int copy = fcntl(file, F_DUPFD_CLOEXEC, 0);
        return copy >= 0 ? std::optional(Stream{file, copy}) : std::nullopt;
    }
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return {};
    }
    fcntl(ends[0], F_SETFL, O_NONBLOCK);
    return Stream{ends[0], ends[1]};
}

/// Files are read from where the last time ended, because their own place is where the process writes.
ssize_t readMore(int fileDescriptor, const std::string& soFar, std::array<char, 4096>& bytes) {
    const ssize_t count = pread(fileDescriptor, bytes.data(), bytes.size(), static_cast<off_t>(soFar.size()));
    return count < 0 && errno == ESPIPE ? read(fileDescriptor, bytes.data(), bytes.size()) : count;
}

void drain(int fileDescriptor, std::string& into) {
    std::array<char, 4096> bytes{};
    ssize_t count = 0;
    while ((count = readMore(fileDescriptor, into, bytes)) > 0) {
        into.append(bytes.data(), static_cast<std::size_t>(count));
    }
}

}  // namespace

Process::Process(const std::vector<std::string>& command, const std::vector<std::string>& environment, Output output)
    : _name(command.front()), _output(output) {
    const auto outputStream = makeStream(output);
    const auto errorStream = makeStream(output);
    if (!outputStream || !errorStream) {
        ADD_FAILURE() << "no streams for " << _name;
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, outputStream->writing, 1);
    posix_spawn_file_actions_adddup2(&actions, errorStream->writing, 2);

    std::vector<std::string> arguments = command;
    std::vector<std::string> variables = changedEnvironment(environment);
    pid_t started = -1;
    const int result = posix_spawn(&started, arguments.front().c_str(), &actions, nullptr, pointers(arguments).data(),
                                   pointers(variables).data());
    if (result == 0) {
        _pid = started;
    } else {
        ADD_FAILURE() << _name << " cannot be started: " << std::generic_category().message(result);
    }
    posix_spawn_file_actions_destroy(&actions);
    close(outputStream->writing);
    close(errorStream->writing);
    _standardOutput = outputStream->reading;
    _standardError = errorStream->reading;
}

Process::~Process() {
    if (isRunning()) {
        kill(*_pid, SIGKILL);
        waitpid(*_pid, nullptr, 0);
    }
    if (_output == Output::Files && testing::Test::HasFailure()) {
        printOutput();
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
    for (int* stream : {&_standardOutput, &_standardError}) {
        if (*stream >= 0) {
            close(std::exchange(*stream, -1));
        }
    }
}

void Process::readOutput() {
    drain(_standardOutput, _end.standardOutput);
    drain(_standardError, _end.standardError);
}

void Process::printOutput() {
    readOutput();
    for (const std::string* text : {&_end.standardOutput, &_end.standardError}) {
        if (!text->empty()) {
            std::cerr << _name << " wrote:\n" << *text << '\n';
        }
    }
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

std::vector<std::string> endingWithTest(std::vector<std::string> command) {
    command.insert(command.begin(), {"/usr/bin/setpriv", "--pdeathsig", "TERM"});
    return command;
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

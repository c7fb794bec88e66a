#include "platform/AddressHandler.hpp"

#include "platform/Clock.hpp"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QSocketNotifier>
#include <QtCore/QTimer>

#include <array>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>

extern char** environ;  // NOLINT

namespace platform {
namespace {

double secondsNow() {
    constexpr double nanosecondsInSecond = 1e9;
    const TimebaseInfo timebase = clock().timebase();
    return static_cast<double>(clock().absoluteTicks()) * timebase.numerator / timebase.denominator /
           nanosecondsInSecond;
}

/// How a process is started that shall have nothing to do with this one: in a session of its own, with the signals as
/// every program expects them, without our terminal.
class SpawnSettings {
public:
    SpawnSettings() {
        sigset_t none;
        sigset_t all;
        sigemptyset(&none);
        sigfillset(&all);
        posix_spawnattr_init(&_attributes);
        posix_spawnattr_setsigmask(&_attributes, &none);
        posix_spawnattr_setsigdefault(&_attributes, &all);
        posix_spawnattr_setflags(&_attributes, POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
        posix_spawn_file_actions_init(&_actions);
        for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
            posix_spawn_file_actions_addopen(&_actions, stream, "/dev/null", O_RDWR, 0);
        }
    }
    ~SpawnSettings() {
        posix_spawn_file_actions_destroy(&_actions);
        posix_spawnattr_destroy(&_attributes);
    }
    SpawnSettings(const SpawnSettings&) = delete;
    SpawnSettings& operator=(const SpawnSettings&) = delete;

    const posix_spawnattr_t* attributes() const { return &_attributes; }
    const posix_spawn_file_actions_t* actions() const { return &_actions; }

private:
    posix_spawnattr_t _attributes{};
    posix_spawn_file_actions_t _actions{};
};

std::optional<pid_t> spawn(const std::string& address) {
    std::string program = "xdg-open";
    std::string argument = address;
    const std::array<char*, 3> arguments{program.data(), argument.data(), nullptr};
    const SpawnSettings settings;
    pid_t process = -1;
    const int error =
        posix_spawnp(&process, program.c_str(), settings.actions(), settings.attributes(), arguments.data(), environ);
    return error == 0 ? std::optional(process) : std::nullopt;
}

/// Waits in the event loop for the end of a child, takes it and goes. Owned by the application.
class ChildWatch final : public QObject {
public:
    ChildWatch(pid_t process, std::function<void(HandlerDoubt)> doubted)
        : QObject(QCoreApplication::instance()),
          _process(process),
          _descriptor(static_cast<int>(syscall(SYS_pidfd_open, process, 0))),
          _doubted(std::move(doubted)) {
        if (_descriptor >= 0) {
            auto notifier = std::make_unique<QSocketNotifier>(_descriptor, QSocketNotifier::Read);
            connect(notifier.get(), &QSocketNotifier::activated, this, [this] { look(); });
            _source = std::move(notifier);
        } else {
            auto timer = std::make_unique<QTimer>();
            connect(timer.get(), &QTimer::timeout, this, [this] { look(); });
            timer->start(std::chrono::milliseconds(500));
            _source = std::move(timer);
        }
    }
    ~ChildWatch() override {
        _source.reset();
        doubt(HandlerDoubt::Unknown);
        if (_descriptor >= 0) {
            close(_descriptor);
        }
    }
    ChildWatch(const ChildWatch&) = delete;
    ChildWatch& operator=(const ChildWatch&) = delete;

private:
    void look() {
        int status = 0;
        const pid_t taken = waitpid(_process, &status, WNOHANG);
        if (taken == 0) {
            return;
        }
        const bool wentWell = taken != _process || (WIFEXITED(status) && WEXITSTATUS(status) == 0);
        if (!wentWell) {
            doubt(HandlerDoubt::Failed);
        }
        _doubted = nullptr;
        _source->blockSignals(true);
        deleteLater();
    }

    void doubt(HandlerDoubt doubt) {
        if (const auto doubted = std::exchange(_doubted, nullptr);
            doubted && secondsNow() - _start <= handlerPatienceSeconds) {
            doubted(doubt);
        }
    }

    const pid_t _process;
    const int _descriptor;
    const double _start = secondsNow();
    std::function<void(HandlerDoubt)> _doubted;  // none once there is none
    std::unique_ptr<QObject> _source;            // says when to look
};

}  // namespace

bool startAddressHandler(const std::string& address, std::function<void(HandlerDoubt)> doubted) {
    const auto process = spawn(address);
    if (process) {
        new ChildWatch(*process, std::move(doubted));
    }
    return process.has_value();
}

}  // namespace platform

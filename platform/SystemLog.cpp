#include "platform/SystemLog.hpp"

#include <syslog.h>
#include <unistd.h>

#include <cstdio>
#include <mutex>
#include <utility>

namespace platform {
namespace {

struct Sink {
    std::mutex mutex;
    std::function<void(std::string_view)> function;
};

Sink& sink() {
    static auto* const instance = new Sink;  // leaked on purpose: threads may log until the process ends
    return *instance;
}

void writeToSystem(std::string_view message) {
    static std::once_flag opened;
    std::call_once(opened, [] { openlog("cirrane", 0, LOG_USER); });

    const auto length = static_cast<int>(message.size());
    syslog(LOG_USER | LOG_NOTICE, "%.*s", length, message.data());
    if (isatty(STDERR_FILENO) == 1) {
        std::fprintf(stderr, "%.*s\n", length, message.data());
    }
}

}  // namespace

void systemLog(std::string_view message) {
    std::function<void(std::string_view)> function;
    {
        const std::lock_guard lock(sink().mutex);
        function = sink().function;
    }
    if (function) {
        function(message);
    } else {
        writeToSystem(message);
    }
}

void setSystemLogSink(std::function<void(std::string_view)> function) {
    const std::lock_guard lock(sink().mutex);
    sink().function.swap(function);  // the former sink, which may log as it goes, is destroyed after the lock
}

}  // namespace platform

#pragma once

#include <sys/resource.h>

#include <csignal>

namespace fake {

/// While this object lives, no file of this process can grow beyond a number of bytes: what a full disk does, without
/// one. Other errors than "no space" come of it ("file too large"), and reading is as before.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes = 0) : _formerHandler(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &_former);
        const rlimit limited{bytes, _former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &_former);
        std::signal(SIGXFSZ, _formerHandler);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*_formerHandler)(int);
    rlimit _former{};
};

}  // namespace fake

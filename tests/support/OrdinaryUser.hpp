#pragma once

#include <unistd.h>

#include <cstdlib>

namespace fake {

/// An ordinary user's view of the file system for the life of this object, also where the tests run as root.
class AsOrdinaryUser {
public:
    AsOrdinaryUser() : _changed(geteuid() == 0 && seteuid(65534) == 0) {}
    ~AsOrdinaryUser() {
        if (_changed && seteuid(0) != 0) {
            std::abort();
        }
    }
    AsOrdinaryUser(const AsOrdinaryUser&) = delete;
    AsOrdinaryUser& operator=(const AsOrdinaryUser&) = delete;

private:
    const bool _changed;
};

}  // namespace fake

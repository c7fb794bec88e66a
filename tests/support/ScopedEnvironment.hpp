#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>

namespace fake {

/// Gives a variable of the environment another value, or none, for the life of this object; what it was comes back.
/// Only while no other thread uses the environment.
class ScopedEnvironment {
public:
    ScopedEnvironment(std::string name, const std::optional<std::string>& value) : _name(std::move(name)) {
        if (const char* const former = getenv(_name.c_str())) {
            _former = former;
        }
        set(value);
    }
    ~ScopedEnvironment() { set(_former); }
    ScopedEnvironment(const ScopedEnvironment&) = delete;
    ScopedEnvironment& operator=(const ScopedEnvironment&) = delete;

    void set(const std::optional<std::string>& value) {
        if (value) {
            setenv(_name.c_str(), value->c_str(), 1);
        } else {
            unsetenv(_name.c_str());
        }
    }

private:
    std::string _name;
    std::optional<std::string> _former;
};

}  // namespace fake

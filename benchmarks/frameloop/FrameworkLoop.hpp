#pragma once

#include "benchmarks/frameloop/Loop.hpp"
#include "platform/SaverModule.hpp"

#include <optional>
#include <string>

namespace bench {

/// The saver in its bundle, drawn by the framework's frame loop in a view of no screen.
class FrameworkLoop final : public Loop {
public:
    /// The module must have been loaded, and the backend and the settings be in force.
    FrameworkLoop(const platform::SaverModule& module, Size size) : _module(module), _size(size) {}

    Run run(std::size_t frames, Pace pace, LastPicture lastPicture) override;

private:
    const platform::SaverModule& _module;
    Size _size;
};

}  // namespace bench

#pragma once

#include "benchmarks/frameloop/BareRenderer.hpp"
#include "benchmarks/frameloop/Loop.hpp"

#include <array>
#include <filesystem>
#include <string>

namespace bench {

/// The bare renderer off the screen.
class BareLoop final : public Loop {
public:
    BareLoop(const std::string& deviceName, const std::filesystem::path& shaderLibrary, Size size);

    Run run(std::size_t frames, Pace pace, LastPicture lastPicture) override;

private:
    std::vector<std::byte> readPicture(const BareImage& picture) const;

    Size _size;
    BareDevice _device;
    std::array<BareImage, slots> _pictures;
    BareRenderer _renderer;
};

}  // namespace bench

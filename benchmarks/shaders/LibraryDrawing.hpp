#pragma once

#include "benchmarks/frameloop/BareRenderer.hpp"

#include <array>
#include <cstddef>
#include <filesystem>

namespace bench {

/// What a frame takes, in milliseconds.
struct FrameTimes {
    double passing = 0.0;  ///< from one frame's completion to the next one's, the median
    double cpu = 0.0;      ///< of the whole process, all threads, the mean
};

/// The passes of one shader library, drawn off the screen as fast as can be. The device must outlive it.
class LibraryDrawing {
public:
    LibraryDrawing(const BareDevice& device, const std::filesystem::path& library, Size size);

    FrameTimes draw(std::size_t frames, BarePasses passes);

private:
    void drawNext(BarePasses passes);

    std::array<BareImage, slots> _pictures;
    BareRenderer _renderer;
    BareSky _sky;
};

}  // namespace bench

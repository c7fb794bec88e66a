#pragma once

#include "benchmarks/frameloop/BarePipelines.hpp"
#include "benchmarks/frameloop/BareSky.hpp"
#include "benchmarks/frameloop/BareTimer.hpp"
#include "benchmarks/frameloop/Loop.hpp"

#include <array>
#include <filesystem>

namespace bench {

/// An image of `BarePipelines::pictureFormat` to draw a frame in.
struct BarePicture {
    vk::Image image;
    vk::ImageView view;
    BareUse next;           ///< what it is left ready for
    vk::Semaphore given{};  ///< drawing waits for it, if there is one
    vk::Semaphore drawn{};  ///< told of the end, if there is one
};

/// What is drawn of a frame. The light pass alone shades what the slot's last colour pass has left.
enum class BarePasses { Both, Color, Light };

/// What somebody would write by hand who needs these two passes and nothing else: one thread, three frames in flight,
/// descriptor sets written once, the fewest barriers. The device must outlive it.
class BareRenderer {
public:
    BareRenderer(const BareDevice& device, const std::filesystem::path& shaderLibrary, Size size);
    BareRenderer(const BareRenderer&) = delete;
    BareRenderer& operator=(const BareRenderer&) = delete;
    ~BareRenderer();

    BareSky makeSky() const {
        return {static_cast<double>(_intermediate.width), static_cast<double>(_intermediate.height)};
    }
    /// Draws in the next slot, whose last frame must have completed.
    void draw(const SkyFrame& frame, const BarePicture& picture, BarePasses passes = BarePasses::Both);
    /// From now on marks the times before, between and after the passes; the timer needs `marksPerFrame` for each slot.
    void setTimer(const BareTimer* timer) { _timer = timer; }
    static constexpr std::uint32_t marksPerFrame = 3;
    /// The first mark of a frame, counted from 0.
    static std::uint32_t firstMark(std::uint64_t frame) {
        return static_cast<std::uint32_t>(frame % slots) * marksPerFrame;
    }
    Size intermediate() const { return _intermediate; }
    /// How many frames have been submitted, and the wait until so many have completed.
    std::uint64_t submitted() const { return _submitted; }
    void waitFor(std::uint64_t frames) const;

private:
    struct Slot {
        vk::raii::CommandPool pool = nullptr;
        vk::raii::CommandBuffer commands = nullptr;
        BareImage color;
        BareImage height;
        BareBuffer colorStyle;
        BareBuffer lightStyle;
        std::array<vk::DescriptorSet, 3> colorSets;
        std::array<vk::DescriptorSet, 3> lightSets;
    };

    void makeNoise(const std::vector<std::byte>& bytes);
    void makeSlot(Slot& slot);
    void writeSets(Slot& slot);
    void recordColorPass(const Slot& slot, const SkyFrame& frame);
    void recordLightPass(const Slot& slot, const BarePicture& picture);
    void mark(const Slot& slot, std::uint32_t mark) const;
    void submit(const Slot& slot, const BarePicture& picture);

    Size _size;
    Size _intermediate;
    const BareDevice& _device;
    BarePipelines _pipelines;
    vk::raii::DescriptorPool _descriptorPool;
    vk::raii::Semaphore _timeline;
    std::uint64_t _submitted = 0;
    const BareTimer* _timer = nullptr;
    BareImage _noise;
    std::array<Slot, slots> _slots;
};

}  // namespace bench

#pragma once

#include "benchmarks/frameloop/BarePipelines.hpp"
#include "benchmarks/frameloop/BareSky.hpp"
#include "benchmarks/frameloop/Loop.hpp"

#include <array>
#include <filesystem>
#include <string>

namespace bench {

/// What somebody would write by hand who needs these two passes and nothing else: one thread, three frames in flight,
/// descriptor sets written once, the fewest barriers.
class BareLoop final : public Loop {
public:
    BareLoop(const std::string& deviceName, const std::filesystem::path& shaderLibrary, Size size);
    ~BareLoop() override;

    Run run(std::size_t frames, Pace pace, LastPicture lastPicture) override;

private:
    struct Slot {
        vk::raii::CommandPool pool = nullptr;
        vk::raii::CommandBuffer commands = nullptr;
        BareImage color;
        BareImage height;
        BareImage picture;
        BareBuffer colorStyle;
        BareBuffer lightStyle;
        std::array<vk::DescriptorSet, 3> colorSets;
        std::array<vk::DescriptorSet, 3> lightSets;
    };

    void makeNoise(const std::vector<std::byte>& bytes);
    void makeSlot(Slot& slot);
    void writeSets(Slot& slot);
    void drawFrame(Slot& slot, const SkyFrame& frame);
    void recordColorPass(const Slot& slot, const SkyFrame& frame);
    void recordLightPass(const Slot& slot);
    void submit(const Slot& slot);
    void waitFor(std::uint64_t value) const;
    std::vector<std::byte> readPicture(const Slot& slot) const;

    Size _size;
    Size _intermediate;
    BareDevice _device;
    BarePipelines _pipelines;
    vk::raii::DescriptorPool _descriptorPool;
    vk::raii::Semaphore _timeline;
    std::uint64_t _submitted = 0;
    BareImage _noise;
    std::array<Slot, slots> _slots;
};

}  // namespace bench

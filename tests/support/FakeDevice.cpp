#include "tests/support/FakeDevice.hpp"

#include "tests/support/FakeCommandBuffer.hpp"
#include "tests/support/FakePixels.hpp"
#include "tests/support/FakeTexture.hpp"

#include <algorithm>
#include <system_error>
#include <utility>

namespace fake {
namespace {

constexpr std::size_t memoryOfDevice = std::size_t{1} << 30;  // in bytes; no single resource may be larger

class Function final : public gpu::Function {
public:
    Function(std::shared_ptr<gpu::Library> library, std::string name, gpu::FunctionType type)
        : gpu::Function(std::move(name), type), _library(std::move(library)) {}

private:
    std::shared_ptr<gpu::Library> _library;
};

class Library final : public gpu::Library, public std::enable_shared_from_this<Library> {
public:
    Library(std::shared_ptr<gpu::Device> device, std::shared_ptr<Gpu::State> state)
        : gpu::Library(std::move(device)), _state(std::move(state)) {}

private:
    std::shared_ptr<gpu::Function> makeFunction(const std::string& name, gpu::FunctionType type) override {
        if (!_state->attempt("newFunction " + name, has(name, type))) {
            return nullptr;
        }
        return _state->make<Function>(shared_from_this(), name, type);
    }

    bool has(const std::string& name, gpu::FunctionType type) const {
        const std::lock_guard lock(_state->mutex);
        const auto& functions = _state->functions;
        return !_state->plan.missingFunctions.contains(name) &&
               std::find(functions.begin(), functions.end(), std::pair(name, type)) != functions.end();
    }

    std::shared_ptr<Gpu::State> _state;
};

std::string listOf(const std::vector<gpu::PixelFormat>& formats) {
    std::string list;
    for (const gpu::PixelFormat format : formats) {
        list += (list.empty() ? "" : ", ") + nameOf(format);
    }
    return "[" + list + "]";
}

bool isReadable(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::is_regular_file(file, error) && std::filesystem::file_size(file, error) > 0 && !error;
}

}  // namespace

bool Device::supportsFeatureSet(gpu::FeatureSet featureSet) const {
    return featureSet == gpu::FeatureSet::MacOsGpuFamily1V3 && !_state->planSays(&FaultPlan::noFeatureSet);
}

void Device::noteCommit() {
    if (!_state->losesDeviceWithNextCommit()) {
        return;
    }
    _lost = true;
    std::function<void(const gpu::Device&)> deviceWasLost;
    {
        const std::lock_guard lock(_state->mutex);
        deviceWasLost = _state->deviceWasLost;
    }
    if (deviceWasLost) {
        deviceWasLost(*this);
    }
}

std::shared_ptr<gpu::CommandQueue> Device::makeCommandQueue() {
    const bool succeeds = !_lost && !_state->planSays(&FaultPlan::noCommandQueue);
    return _state->attempt("newCommandQueue", succeeds) ? _state->make<CommandQueue>(self()) : nullptr;
}

std::shared_ptr<gpu::Texture> Device::makeTexture(const gpu::TextureDescriptor& descriptor) {
    const std::string call = "newTexture " + nameOf(descriptor.pixelFormat) + " " +
                             nameOf(gpu::Extent{descriptor.width, descriptor.height}) + " usage " +
                             std::to_string(static_cast<std::uint32_t>(descriptor.usage)) + " storage " +
                             std::to_string(static_cast<std::uint32_t>(descriptor.storageMode));
    const std::size_t length = descriptor.width * descriptor.height * bytesPerPixel(descriptor.pixelFormat);
    const bool succeeds = _state->next(&Gpu::State::Counts::textures, &FaultPlan::failingTextures);
    if (!_state->attempt(call, succeeds && !_lost && length <= memoryOfDevice)) {
        return nullptr;
    }
    return _state->make<Texture>(self(), _state, descriptor);
}

std::shared_ptr<gpu::Buffer> Device::makeBuffer(std::size_t length) {
    const bool succeeds = _state->next(&Gpu::State::Counts::buffers, &FaultPlan::failingBuffers);
    if (!_state->attempt("newBuffer " + std::to_string(length), succeeds && !_lost && length <= memoryOfDevice)) {
        return nullptr;
    }
    return _state->make<Buffer>(self(), length);
}

std::shared_ptr<gpu::Library> Device::makeLibrary(const std::filesystem::path& file) {
    const bool succeeds = !_lost && !_state->planSays(&FaultPlan::noLibrary) && isReadable(file);
    if (!_state->attempt("newLibrary " + file.filename().string(), succeeds)) {
        return nullptr;
    }
    return _state->make<Library>(self(), _state);
}

std::shared_ptr<gpu::RenderPipelineState> Device::makeRenderPipelineState(
    const gpu::RenderPipelineDescriptor& descriptor) {
    const std::string name = descriptor.vertexFunction->name() + "+" + descriptor.fragmentFunction->name();
    const bool succeeds = _state->next(&Gpu::State::Counts::renderPipelines, &FaultPlan::failingRenderPipelines);
    std::string call = "newRenderPipeline " + name + " " + listOf(descriptor.colorAttachmentFormats);
    for (const std::uint32_t constant : descriptor.constants) {
        call += " " + std::to_string(constant);
    }
    if (!_state->attempt(call, succeeds && !_lost)) {
        return nullptr;
    }
    return _state->make<RenderPipelineState>(self(), name);
}

std::shared_ptr<gpu::ComputePipelineState> Device::makeComputePipelineState(
    const std::shared_ptr<gpu::Function>& function) {
    const bool succeeds = _state->next(&Gpu::State::Counts::computePipelines, &FaultPlan::failingComputePipelines);
    if (!_state->attempt("newComputePipeline " + function->name(), succeeds && !_lost)) {
        return nullptr;
    }
    return _state->make<ComputePipelineState>(self(), function->name());
}

}  // namespace fake

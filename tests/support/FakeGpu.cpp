#include "tests/support/FakeGpu.hpp"

#include "tests/support/FakeDevice.hpp"
#include "tests/support/FakeGpuState.hpp"
#include "tests/support/FakeLayer.hpp"
#include "tests/support/FakeTexture.hpp"

#include <utility>

namespace fake {

void Gpu::State::record(const std::string& call) {
    const std::lock_guard lock(mutex);
    calls.push_back(call);
}

bool Gpu::State::attempt(const std::string& call, bool succeeds) {
    const std::lock_guard lock(mutex);
    const bool isPlannedFailure = plan.failingCalls.contains(counts.calls++);
    const bool succeeded = succeeds && !isPlannedFailure;
    calls.push_back(succeeded ? call : call + " failed");
    return succeeded;
}

bool Gpu::State::next(Count count, Failing failing) {
    const std::lock_guard lock(mutex);
    return !(plan.*failing).contains((counts.*count)++);
}

bool Gpu::State::losesDeviceWithNextCommit() {
    const std::lock_guard lock(mutex);
    const std::uint64_t number = counts.commits++;
    if (plan.lostAfterCommits.has_value() && number >= *plan.lostAfterCommits) {
        plan.lostAfterCommits.reset();
        return true;
    }
    return false;
}

bool Gpu::State::planSays(bool FaultPlan::*fault) const {
    const std::lock_guard lock(mutex);
    return plan.*fault;
}

Gpu::Gpu(FaultPlan plan) : _state(std::make_shared<State>()) {
    _state->plan = std::move(plan);
    _state->functions = {{"QZLColorVertexShader", gpu::FunctionType::Vertex},
                         {"QZLColorFragmentShader", gpu::FunctionType::Fragment},
                         {"QZLLightVertexShader", gpu::FunctionType::Vertex},
                         {"QZLLightFragmentShader", gpu::FunctionType::Fragment}};
    _state->deviceWasLost = [this](const gpu::Device& device) { deviceWasLost(device); };
}

Gpu::~Gpu() {
    {
        const std::lock_guard lock(_state->mutex);
        _state->deviceWasLost = nullptr;
    }
    _state->submissions.clear();
}

FaultPlan& Gpu::plan() {
    return _state->plan;
}

std::vector<std::string> Gpu::calls() const {
    const std::lock_guard lock(_state->mutex);
    return _state->calls;
}

void Gpu::clearCalls() {
    const std::lock_guard lock(_state->mutex);
    _state->calls.clear();
}

void Gpu::record(const std::string& call) {
    _state->record(call);
}

std::vector<Draw> Gpu::draws() const {
    const std::lock_guard lock(_state->mutex);
    return _state->draws;
}

bool Gpu::completeNext(bool succeeded) {
    return _state->submissions.completeNext(succeeded);
}

void Gpu::completeAll() {
    while (completeNext()) {
    }
}

std::size_t Gpu::liveObjects() const {
    return *_state->liveObjects;
}

std::size_t Gpu::committedButIncomplete() const {
    return _state->submissions.count();
}

void Gpu::setCompletesAtCommit(bool completesAtCommit) {
    const std::lock_guard lock(_state->mutex);
    _state->completesAtCommit = completesAtCommit;
}

void Gpu::setFunctions(std::vector<std::pair<std::string, gpu::FunctionType>> functions) {
    const std::lock_guard lock(_state->mutex);
    _state->functions = std::move(functions);
}

std::string Gpu::platformVersion() {
    const std::lock_guard lock(_state->mutex);
    return _state->plan.platformVersion;
}

std::shared_ptr<gpu::Layer> Gpu::newLayer() {
    return _state->attempt("newLayer") ? _state->make<Layer>(_state) : nullptr;
}

std::shared_ptr<gpu::RenderPassDescriptor> Gpu::newRenderPassDescriptor() {
    const bool succeeds = _state->next(&State::Counts::renderPassDescriptors, &FaultPlan::failingRenderPassDescriptors);
    return _state->attempt("newRenderPassDescriptor", succeeds) ? _state->make<gpu::RenderPassDescriptor>() : nullptr;
}

std::vector<std::byte> Gpu::pixels(const gpu::Texture& texture) {
    return dynamic_cast<const Texture&>(texture).pixels();
}

std::shared_ptr<gpu::Drawable> Gpu::lastPresented(const gpu::Layer& layer) {
    return dynamic_cast<const Layer&>(layer).lastPresented();
}

std::shared_ptr<gpu::Device> Gpu::openDevice() {
    const bool succeeds = !_state->planSays(&FaultPlan::noDevice);
    return _state->attempt("openDevice", succeeds) ? _state->make<Device>(_state) : nullptr;
}

ScopedGpu::ScopedGpu(FaultPlan plan) : _former(gpu::backend()), _gpu(std::make_shared<Gpu>(std::move(plan))) {
    gpu::setBackend(_gpu);
}

ScopedGpu::~ScopedGpu() {
    gpu::setBackend(_former);
}

}  // namespace fake

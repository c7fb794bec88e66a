#include "tests/support/ManualDisplayLink.hpp"

namespace fake {
namespace {

class ManualDisplayLink final : public platform::DisplayLink {
public:
    explicit ManualDisplayLink(std::shared_ptr<DisplayLinkControl> control) : _control(std::move(control)) {
        _control->exists = true;
        _control->link = this;
    }

    ~ManualDisplayLink() override {
        _control->exists = false;
        _control->running = false;
        _control->link = nullptr;
        note("releaseDisplayLink");
    }

    platform::RefreshPeriod nominalOutputVideoRefreshPeriod() const override { return _control->period; }

    int setOutputCallback(OutputCallback callback, void* context) override {
        if (_control->setOutputCallbackResult == platform::displayLinkSuccess) {
            _control->callback = callback;
            _control->context = context;
        }
        return _control->setOutputCallbackResult;
    }

    int start() override {
        note("startDisplayLink");
        ++_control->starts;
        _control->running = true;
        return platform::displayLinkSuccess;
    }

    int stop() override {
        note("stopDisplayLink");
        ++_control->stops;
        _control->running = false;
        return _control->stopResult;
    }

private:
    void note(const char* call) const {
        if (_control->record) {
            _control->record(call);
        }
    }

    std::shared_ptr<DisplayLinkControl> _control;
};

}  // namespace

int DisplayLinkControl::fire() {
    if (!running || callback == nullptr) {
        return platform::displayLinkNotRunning;
    }
    const platform::DisplayTime time;
    std::uint64_t flagsOut = 0;
    return callback(link, &time, &time, 0, &flagsOut, context);
}

int createManualDisplayLink(const std::shared_ptr<DisplayLinkControl>& control, std::uint32_t display,
                            std::unique_ptr<platform::DisplayLink>& link) {
    control->display = display;
    if (control->record) {
        control->record("createDisplayLink");
    }
    if (control->createResult == platform::displayLinkSuccess) {
        link = std::make_unique<ManualDisplayLink>(control);
    }
    return control->createResult;
}

}  // namespace fake

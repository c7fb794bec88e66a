#include "tests/host/RecordingSaver.hpp"

#include "platform/ui/ScreenSaverView.hpp"

#include <cmath>
#include <string_view>

namespace fake {
namespace {

RecordingSaver* current = nullptr;

std::string sized(std::string_view what, double width, double height) {
    return std::string(what) + " " + std::to_string(std::lround(width)) + "x" + std::to_string(std::lround(height));
}

}  // namespace

class RecordingSaver::View final : public platform::ScreenSaverView {
public:
    View(const platform::Rect& frame, bool isPreview) : ScreenSaverView(frame, isPreview) {}
    ~View() override {
        add("end");
        current->_newestView = nullptr;
    }

    void startAnimation() override {
        add(sized("start", width(), height()));
        ScreenSaverView::startAnimation();
        if (current->_startFails) {
            showErrorCode(108, 0);
        }
    }
    void stopAnimation() override {
        if (!shownError()) {
            add("stop");
        }
        ScreenSaverView::stopAnimation();
    }
    void showErrorCode(std::int64_t code, std::int64_t subCode) override {
        _error = platform::Error("Tests", code, {});
        add("error " + std::to_string(code) + ":" + std::to_string(subCode));
    }
    std::optional<platform::Error> shownError() const override { return _error; }
    bool hasConfigureSheet() override { return current->_sheet != nullptr; }
    QWidget* configureSheet() override {
        add("sheet");
        return current->_sheet;
    }

private:
    static void add(std::string line) { current->_lines.push_back(std::move(line)); }

    std::optional<platform::Error> _error;
};

RecordingSaver::RecordingSaver() {
    current = this;
}

RecordingSaver::~RecordingSaver() {
    current = nullptr;
}

const platform::SaverModule* RecordingSaver::module() const {
    static constexpr platform::SaverModule module{platform::SaverModule::currentVersion, createView, []() noexcept {}};
    return &module;
}

platform::ScreenSaverView* RecordingSaver::createView(const platform::Rect& frame, bool isPreview) noexcept {
    if (current->_makesNoView) {
        return nullptr;
    }
    current->_lines.push_back(sized("make", frame.width, frame.height) + (isPreview ? " preview" : ""));
    current->_newestView = new View(frame, isPreview);
    return current->_newestView;
}

}  // namespace fake

#pragma once

#include "saver/QZLCirraneRenderer.hpp"
#include "view/QZLScreenSaverView.hpp"

/// The cloudscape's view: makes the renderer and takes what concerns a view from the settings. Threads, ownership and
/// failures as its base.
class QZLCirraneView final : public QZLScreenSaverView {
public:
    QZLCirraneView(const platform::Rect& frame, bool isPreview);

    std::unique_ptr<platform::WindowController> createConfigureController() override;
    void configurationChanged() override;
    bool errorIsReportable(std::int64_t code) const override;
    void showErrorCode(std::int64_t code, std::int64_t subCode) override;
    std::map<std::string, std::uint64_t> facts() const override;
};

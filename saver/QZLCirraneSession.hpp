#pragma once

#include "platform/SaverModule.hpp"
#include "saver/QZLCirraneRenderer.hpp"

#include <memory>

/// The cloudscape in one view: owns the view's journal, statistics and renderer, keeps the view alive, and follows
/// changes of the settings. Main thread only. Attaches on the first start; a start that fails leaves it detached and
/// may be tried again.
class QZLCirraneSession final : public platform::SaverSession {
public:
    QZLCirraneSession(std::shared_ptr<platform::HostView> view, bool isPreview, std::int64_t screenIndex);
    ~QZLCirraneSession() override;

    std::optional<platform::Error> startAnimation() override;
    void stopAnimation() override;
    void detach() override;
    std::uint32_t seed() const override { return _renderer->seed(); }
    std::uint64_t intermediateWidth() const override { return _renderer->intermediateWidth(); }
    std::uint64_t intermediateHeight() const override { return _renderer->intermediateHeight(); }

    const QZLJournal& journal() const { return *_journal; }
    const QZLCirraneRenderer& renderer() const { return *_renderer; }

private:
    std::optional<platform::Error> attachAndStart();

    std::shared_ptr<platform::HostView> _view;
    bool _isPreview;
    std::int64_t _screenIndex;
    std::shared_ptr<QZLJournal> _journal;
    std::shared_ptr<QZLStatistics> _statistics;
    std::shared_ptr<QZLCirraneRenderer> _renderer;
    bool _isRunning = false;
    std::shared_ptr<const void> _lifetime;  // last, so that notifications end first
};

/// Posted when stored settings have changed; every session hears it.
inline constexpr const char* QZLCirraneSettingsChangedNotification = "QZLConfigurationStoredNotification";

#pragma once

#include "foundation/QZLJournal.hpp"
#include "foundation/QZLStatistics.hpp"
#include "platform/ui/ScreenSaverView.hpp"
#include "platform/ui/TextField.hpp"
#include "platform/ui/WindowController.hpp"
#include "renderhost/QZLMetalRenderer.hpp"
#include "view/QZLAttributedLabel.hpp"

#include <QtCore/QTimer>
#include <QtGui/QColor>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

/// The framework's view: decides whether its screen draws at all, attaches, starts and stops a saver's renderer, relays
/// changes of the settings, shows the strip of frame statistics, and shows an error in place of the animation when the
/// renderer cannot be attached. A saver derives from it. It owns its renderer, statistics and journal. Main thread.
/// Nothing that fails in here reaches the host other than as the error screen, which is final.
class QZLScreenSaverView : public platform::ScreenSaverView {
public:
    /// What `screenIndex` answers for a window on no screen of the list: the platform's "not found".
    static constexpr std::uint64_t notFound = INT64_MAX;

    QZLScreenSaverView(std::shared_ptr<QZLMetalRenderer> renderer, const platform::Rect& frame, bool isPreview);
    /// Stops and detaches the renderer.
    ~QZLScreenSaverView() override;

    /// 0 for a preview, else the place of the view's screen in the list of screens.
    std::uint64_t screenIndex() const;
    void startAnimation() override;
    void stopAnimation() override;
    /// A preview that is redrawn while it stands still starts again.
    void drawRect(const platform::Rect& dirtyRect) override;

    // Hooks of a saver.
    /// Makes the settings sheet's controller; null, as here, for a saver without settings. Called once, on first need.
    virtual std::unique_ptr<platform::WindowController> createConfigureController();
    virtual void configurationChanged();
    /// Whether an error of that code is worth a report that the user may send.
    virtual bool errorIsReportable(std::int64_t code) const;

    bool hasConfigureSheet() override;
    QWidget* configureSheet() override;
    void handleConfigurationChanged();

    const std::shared_ptr<QZLStatistics>& statistics() const { return _statistics; }
    const std::shared_ptr<QZLJournal>& journal() const { return _journal; }

    /// Whether screens other than the first draw too.
    bool multiScreen() const { return _multiScreen; }
    void setMultiScreen(bool multiScreen) { _multiScreen = multiScreen; }

    // The strip of frame statistics along the bottom edge.
    bool showDiagnostics() const { return _diagnosticText != nullptr; }
    void setShowDiagnostics(bool show);
    /// The line that the strip shows now.
    std::string diagnosticText() const;
    void updateDiagnosticText();

    // The error screen.
    /// Gives up drawing for good, journals the error, saves a report of it when its kind is worth one, and shows it.
    void showError(const platform::Error& error);
    void showErrorCode(std::int64_t code, std::int64_t subCode) override;
    std::optional<platform::Error> shownError() const override { return _shownError; }
    const std::string& errorFontName() const { return _errorFontName; }
    void setErrorFontName(std::string name) { _errorFontName = std::move(name); }
    const QColor& errorForeground() const { return _errorForeground; }
    void setErrorForeground(const QColor& color) { _errorForeground = color; }
    const QColor& errorBackground() const { return _errorBackground; }
    void setErrorBackground(const QColor& color) { _errorBackground = color; }

protected:
    QZLMetalRenderer* renderer() const { return _renderer.get(); }
    const platform::TextField* diagnosticField() const { return _diagnosticText; }
    const QTimer* diagnosticTimer() const { return _diagnosticTimer; }
    const QZLAttributedLabel* errorView() const { return _errorView; }

    void sizeSettled() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    platform::Rect viewBounds() const;
    std::optional<platform::Error> attachRenderer();
    void makeConfigureController();
    void layOutError();

    std::shared_ptr<QZLMetalRenderer> _renderer;
    std::unique_ptr<platform::WindowController> _configureController;
    bool _configureOnceToken = false;
    std::shared_ptr<QZLStatistics> _statistics;
    platform::TextField* _diagnosticText = nullptr;  // a child, as are the next and the label
    QTimer* _diagnosticTimer = nullptr;
    std::string _diagnosticTextFormat;
    QZLAttributedLabel* _errorView = nullptr;
    bool _multiScreen = false;
    std::string _errorFontName = "Helvetica";
    QColor _errorForeground = Qt::white;
    QColor _errorBackground = Qt::red;
    std::shared_ptr<QZLJournal> _journal;
    std::optional<platform::Error> _shownError;
    std::shared_ptr<const void> _lifetime = std::make_shared<char>();  // last, so that notifications end first
};

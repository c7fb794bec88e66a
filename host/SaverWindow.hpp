#pragma once

#include "host/CommandLine.hpp"
#include "platform/SaverModule.hpp"
#include "platform/ui/ScreenSaverView.hpp"

#include <QtCore/QTimer>
#include <QtWidgets/QWidget>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

namespace host {

/// The saver that was loaded, or one line that says why it could not be.
using LoadedSaver = std::variant<const platform::SaverModule*, std::string>;

/// What windows show, and how.
struct Showing {
    LoadedSaver saver;
    bool isPreview = false;
    /// Shown instead of the picture.
    std::optional<ErrorCode> testError;
};

/// A black window, or part of another one, that a view of the saver fills. The view is made when the window is first
/// shown, draws while it can be seen, and is only stopped when it cannot. Whatever goes wrong stands in the window
/// until it is closed. Main thread.
class SaverWindow : public QWidget {
public:
    explicit SaverWindow(const Showing& showing);
    ~SaverWindow() override;

    /// After the device was lost: another view in place of the one that draws no more. Where even that cannot be
    /// started, the handler is called, and the next one made takes its place; other errors stand.
    void makeViewAnew();
    /// Called before a view goes because another takes its place.
    void setViewWillGoHandler(std::function<void()> handler) { _viewWillGo = std::move(handler); }
    void setRecoveryFailedHandler(std::function<void()> handler) { _recoveryFailed = std::move(handler); }
    /// After screens got other numbers, which views take note of when they start.
    void startAnew();
    /// Gives up: the view shows that error for good.
    void showErrorCode(const ErrorCode& error);
    /// Stops and lets go of the view.
    void closeView();
    /// Counts as not to be seen, until it is resumed.
    void pause();
    void resume();

    /// Null before it is shown, and when there is none to be had.
    platform::ScreenSaverView* view() const { return _view.get(); }

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void changeEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void makeView();
    void replaceView();
    void showReason(const std::string& reason);
    bool isMapped() const;
    bool mayReplaceView() const { return _view != nullptr && (_isRecovering || !_view->shownError()); }
    bool canBeSeen() const { return _isShown && _isUncovered && !_isPaused && !window()->isMinimized() && isMapped(); }
    void startOrStop();
    void startNow();

    const Showing& _showing;
    std::unique_ptr<platform::ScreenSaverView> _view;
    QWidget* _reason = nullptr;
    bool _isShown = false;
    bool _isUncovered = true;
    bool _isPaused = false;
    bool _isRecovering = false;  ///< its view was made anew and has not started yet, or could not
    std::function<void()> _viewWillGo;
    std::function<void()> _recoveryFailed;
    QTimer _startSoon;
};

}  // namespace host

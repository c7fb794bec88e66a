#pragma once

#include <QtCore/QAbstractNativeEventFilter>
#include <QtCore/QRect>
#include <cstdint>
#include <functional>
#include <optional>

namespace host {

/// Another program's X11 window, watched: its size, whether it is shown, and that it is destroyed. Nothing that its
/// owner reads is selected on it. Main thread, with an application on X11.
class ForeignWindow final : public QAbstractNativeEventFilter {
public:
    explicit ForeignWindow(std::uint32_t window);
    ~ForeignWindow() override;
    ForeignWindow(const ForeignWindow&) = delete;
    ForeignWindow& operator=(const ForeignWindow&) = delete;

    /// In pixels; nothing when there is no such window, or none that can be drawn in.
    std::optional<QSize> size() const;
    /// Its place on the desktop, in pixels.
    QRect placeOnDesktop() const;
    bool isMapped() const;

    void setResizeHandler(std::function<void(QSize)> handler) { _resized = std::move(handler); }
    void setMapHandler(std::function<void(bool isMapped)> handler) { _mapped = std::move(handler); }
    void setDestroyHandler(std::function<void()> handler) { _destroyed = std::move(handler); }

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    std::uint32_t _window;
    std::function<void(QSize)> _resized;
    std::function<void(bool)> _mapped;
    std::function<void()> _destroyed;
};

/// Takes what a person does with keys and pointer out of what a window of ours has selected.
void ignoreInput(std::uint32_t window);

}  // namespace host

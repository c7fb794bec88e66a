#pragma once

#include "host/FullscreenTest.hpp"
#include "host/HostTexts.hpp"
#include "host/SaverHosts.hpp"
#include "host/SaverWindows.hpp"

#include <QtCore/QPointer>
#include <QtCore/QTimer>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QWidget>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace host {

/// What a screen saver's place in the system settings is: a live preview, the saver's options, a test on the whole
/// screen, and how to have it start by itself. What goes wrong in the preview shows there; the rest works on. Main
/// thread.
class ConfigureWindow final : public QWidget {
public:
    /// `fullscreenCommand` is the program and the arguments of the test.
    ConfigureWindow(const Showing& showing, const HostTexts& texts, const std::vector<SaverHost>& hosts,
                    const std::vector<std::string>& fullscreenCommand);
    ~ConfigureWindow() override;
    ConfigureWindow(const ConfigureWindow&) = delete;
    ConfigureWindow& operator=(const ConfigureWindow&) = delete;

    /// Brings it before all others, wherever it is.
    void present();
    /// Says that the settings could not be written into that file, as soon as the sheet that wished it has gone.
    void tellNotKept(const std::filesystem::path& file);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void makeButtons();
    void layOut(const std::vector<SaverHost>& hosts);
    void updateOptionsButton();
    void openOptions();
    void closeOptions();
    void showFailure(const QString& text);
    void startFullscreenTest();
    void endFullscreenTest(const std::optional<std::string>& failure);
    QString text(const char* key) const { return QString::fromStdString(_texts.text(key)); }

    const HostTexts _texts;
    SaverWindows _windows;
    SaverWindow& _preview;
    QPushButton* const _options;
    QPushButton* const _fullscreen;
    QPushButton* const _close;
    QLabel* _failure = new QLabel(this);
    QPointer<QWidget> _sheet;  // the view's own, while it is open
    FullscreenTest _test;
    std::filesystem::path _notKept;  // the file that could not be written last
    QTimer _telling;
};

}  // namespace host

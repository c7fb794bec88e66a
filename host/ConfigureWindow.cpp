#include "host/ConfigureWindow.hpp"

#include "host/SaverHostList.hpp"
#include "platform/StringFormat.hpp"
#include "platform/ui/Message.hpp"

#include <QtGui/QKeyEvent>
#include <QtGui/QKeySequence>
#include <QtGui/QScreen>
#include <QtGui/QShortcut>
#include <QtGui/QShowEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

namespace host {
namespace {

constexpr QSize smallestPreview{240, 135};
constexpr QSize usualPreview{640, 360};

/// Return presses it as the space bar does, but once only however long it is held: what it opened may be closed by
/// then.
class Button final : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void keyPressEvent(QKeyEvent* event) override {
        const bool isEnter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
        if (isEnter && !event->isAutoRepeat()) {
            click();
        } else if (!isEnter) {
            QPushButton::keyPressEvent(event);
        }
    }
};

}  // namespace

ConfigureWindow::ConfigureWindow(const Showing& showing, const HostTexts& texts, const std::vector<SaverHost>& hosts,
                                 const std::vector<std::string>& fullscreenCommand)
    : _texts(texts),
      _windows(showing),
      _preview(_windows.add()),
      _options(new Button(this)),
      _fullscreen(new Button(this)),
      _close(new Button(this)),
      _test(fullscreenCommand) {
    setWindowTitle(text("HOST_CONFIGURE_TITLE"));
    _preview.setMinimumSize(smallestPreview);
    _preview.setAccessibleName(text("HOST_CONFIGURE_PREVIEW"));
    _preview.setAccessibleDescription(text("HOST_CONFIGURE_PREVIEW_DESCRIPTION"));
    _preview.setViewWillGoHandler([this] { closeOptions(); });
    _failure->setTextFormat(Qt::PlainText);
    _failure->setWordWrap(true);
    _failure->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    _failure->hide();
    makeButtons();
    layOut(hosts);
    _test.setEndHandler([this](const std::optional<std::string>& failure) { endFullscreenTest(failure); });
    _telling.setSingleShot(true);
    connect(&_telling, &QTimer::timeout, this, [this] {
        const std::string text = platform::formatted(_texts.text("HOST_CONFIGURE_NOT_KEPT_FORMAT"), _notKept.string());
        platform::showMessage(text, _sheet != nullptr ? _sheet.data() : this);
    });
    auto* const escape = new QShortcut(QKeySequence::Cancel, this);
    escape->setAutoRepeat(false);  // the key may be the one that has just closed the options
    connect(escape, &QShortcut::activated, this, [this] { close(); });
}

ConfigureWindow::~ConfigureWindow() {
    closeOptions();
}

void ConfigureWindow::makeButtons() {
    _options->setText(text("HOST_CONFIGURE_OPTIONS"));
    _fullscreen->setText(text("HOST_CONFIGURE_FULLSCREEN"));
    _fullscreen->setToolTip(text("HOST_CONFIGURE_FULLSCREEN_TIP"));
    _close->setText(text("HOST_CONFIGURE_CLOSE"));
    for (QPushButton* const button : {_options, _fullscreen, _close}) {
        button->setAccessibleName(button->text().remove(QLatin1Char('&')));
    }
    _fullscreen->setAccessibleDescription(_fullscreen->toolTip());
    _close->setAccessibleDescription(text("HOST_CONFIGURE_CLOSE_DESCRIPTION"));
    connect(_options, &QPushButton::clicked, this, [this] { openOptions(); });
    connect(_fullscreen, &QPushButton::clicked, this, [this] { startFullscreenTest(); });
    connect(_close, &QPushButton::clicked, this, [this] { close(); });
    updateOptionsButton();
}

/// The preview comes first, so that nothing but the window's size ever moves it.
void ConfigureWindow::layOut(const std::vector<SaverHost>& hosts) {
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(_options);
    buttons->addWidget(_fullscreen);
    buttons->addStretch();
    auto* const heading = new QLabel(text("HOST_CONFIGURE_HOSTS"));
    heading->setTextFormat(Qt::PlainText);
    heading->setWordWrap(true);
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.2);
    heading->setFont(large);
    auto* const list = new SaverHostList(hosts, _texts);
    auto* const end = new QHBoxLayout;
    end->addStretch();
    end->addWidget(_close);

    auto* const layout = new QVBoxLayout(this);
    layout->addWidget(&_preview, 1);
    layout->addLayout(buttons);
    layout->addWidget(_failure);
    layout->addSpacing(fontMetrics().lineSpacing() / 2);
    layout->addWidget(heading);
    layout->addWidget(list);
    layout->addLayout(end);
    // Above the list in the order of the keys, as on the screen; the preview takes none.
    setTabOrder(_options, _fullscreen);
    setTabOrder(_fullscreen, list);
    setTabOrder(list, _close);
    _options->setFocus();

    const int below = sizeHint().height() - _preview.minimumHeight();
    const QSize wish(qMax(usualPreview.width(), minimumSizeHint().width()), usualPreview.height() + below);
    resize(wish.boundedTo(screen()->availableSize() * 9 / 10));
}

void ConfigureWindow::present() {
    for (QWidget* const window : {static_cast<QWidget*>(this), _sheet.data()}) {
        if (window != nullptr) {
            window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
            window->show();
            window->raise();
            window->activateWindow();
        }
    }
}

void ConfigureWindow::tellNotKept(const std::filesystem::path& file) {
    _notKept = file;
    _telling.start();
}

/// The view is made when the preview is first shown.
void ConfigureWindow::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    updateOptionsButton();
    (_options->isEnabled() ? _options : _fullscreen)->setFocus();
}

void ConfigureWindow::updateOptionsButton() {
    const bool hasOptions = _preview.view() != nullptr && _preview.view()->hasConfigureSheet();
    _options->setEnabled(hasOptions);
    _options->setToolTip(text(hasOptions ? "HOST_CONFIGURE_OPTIONS_TIP" : "HOST_CONFIGURE_NO_OPTIONS"));
    _options->setAccessibleDescription(_options->toolTip());
}

/// The sheet ends itself, which is seen by its hiding.
void ConfigureWindow::openOptions() {
    QWidget* const sheet = _preview.view() != nullptr ? _preview.view()->configureSheet() : nullptr;
    if (sheet == nullptr) {
        updateOptionsButton();
        showFailure(text("HOST_CONFIGURE_OPTIONS_FAILED"));
        return;
    }
    _failure->hide();
    if (_sheet != sheet) {
        sheet->setParent(this, Qt::Dialog);
        sheet->setWindowModality(Qt::WindowModal);
        sheet->installEventFilter(this);
        _sheet = sheet;
    }
    sheet->show();
    sheet->raise();
    sheet->activateWindow();
}

/// What was changed there is kept, as with its own button.
void ConfigureWindow::closeOptions() {
    if (_sheet != nullptr) {
        _sheet->close();
    }
    if (_sheet != nullptr) {
        _sheet->removeEventFilter(this);
    }
}

bool ConfigureWindow::eventFilter(QObject* object, QEvent* event) {
    if (object == _sheet && event->type() == QEvent::Hide && !event->spontaneous()) {
        _sheet->removeEventFilter(this);
        _sheet = nullptr;
        activateWindow();
        _options->setFocus();
    }
    return QWidget::eventFilter(object, event);
}

void ConfigureWindow::startFullscreenTest() {
    _failure->hide();
    _fullscreen->setEnabled(false);
    _preview.pause();
    _test.start();
}

void ConfigureWindow::endFullscreenTest(const std::optional<std::string>& failure) {
    _preview.resume();
    _fullscreen->setEnabled(true);
    _fullscreen->setFocus();
    if (failure) {
        const std::string reason = failure->empty() ? _texts.text("HOST_CONFIGURE_FULLSCREEN_ENDED") : *failure;
        showFailure(QString::fromStdString(
            platform::formatted(_texts.text("HOST_CONFIGURE_FULLSCREEN_FAILED_FORMAT"), reason)));
    }
}

void ConfigureWindow::showFailure(const QString& text) {
    _failure->setText(text);
    _failure->show();
}

}  // namespace host

#include "platform/ui/WindowController.hpp"

#include "platform/SystemLog.hpp"
#include "platform/ui/FormLoader.hpp"
#include "platform/ui/TaggedViews.hpp"

#include <QtCore/QEvent>
#include <QtWidgets/QAbstractButton>
#include <utility>

namespace platform {
namespace {

/// The signal that tells that a view was used; null when it has none.
const char* signalOf(const QWidget& view) {
    if (qobject_cast<const QAbstractButton*>(&view) != nullptr) {
        return SIGNAL(clicked());
    }
    return view.metaObject()->indexOfSignal("triggered()") >= 0 ? SIGNAL(triggered()) : nullptr;
}

/// Tells a view that has use for it that its form has set all that it sets.
void awake(QWidget& view) {
    if (view.metaObject()->indexOfMethod("awakeFromNib()") >= 0) {
        QMetaObject::invokeMethod(&view, "awakeFromNib");
    }
}

/// Turns a signal that is known by its name only into a call.
class Sender final : public QObject {
    Q_OBJECT

public:
    Sender(QObject* owner, const std::function<void()>& action) : QObject(owner), _action(action) {}
    Q_SLOT void send() { _action(); }

private:
    const std::function<void()>& _action;
};

/// Tells when the program shows a window; the window system's own showing and hiding does not count.
class Appearances final : public QObject {
public:
    Appearances(QObject* window, std::function<void()> appears) : QObject(window), _appears(std::move(appears)) {
        window->installEventFilter(this);
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Show && !event->spontaneous()) {
            _appears();
        }
        return false;
    }

private:
    const std::function<void()> _appears;
};

}  // namespace

WindowController::WindowController(std::shared_ptr<const Bundle> bundle, std::string formName)
    : _bundle(std::move(bundle)), _formName(std::move(formName)) {}

WindowController::~WindowController() {
    delete _window;
}

QWidget* WindowController::window() {
    if (!std::exchange(_isLoaded, true)) {
        load();
    }
    return _window;
}

void WindowController::load() {
    _window = loadForm(_bundle, _formName, _makeView);
    if (_window == nullptr) {
        return;
    }
    QList<QWidget*> views = _window->findChildren<QWidget*>();
    views.prepend(_window);
    for (QWidget* view : views) {
        bindOutlet(*view);
        bindAction(*view);
        awake(*view);
    }
    keepSpaceOfTaggedViews(*_window);
    windowDidLoad();
    new Appearances(_window, [this] { windowWillAppear(); });
}

void WindowController::bindOutlet(QWidget& view) {
    const std::string name = view.objectName().toStdString();
    if (!name.starts_with('_')) {
        return;
    }
    const auto outlet = _outlets.find(name);
    if (outlet == _outlets.end()) {
        log("there is no outlet for " + name);
    } else if (!outlet->second(&view)) {
        log(name + " is of the wrong class, " + view.metaObject()->className());
    }
}

void WindowController::bindAction(QWidget& view) {
    const std::string name = view.property("action").toString().toStdString();
    if (name.empty()) {
        return;
    }
    const auto action = _actions.find(name);
    const char* const signal = signalOf(view);
    if (action == _actions.end()) {
        log("nothing answers to the action " + name);
    } else if (signal == nullptr) {
        log(std::string("a view of the class ") + view.metaObject()->className() + " cannot send " + name);
    } else {
        QObject::connect(&view, signal, new Sender(&view, action->second), SLOT(send()));
    }
}

void WindowController::log(const std::string& message) const {
    systemLog("form " + _formName + ": " + message);
}

}  // namespace platform

#include "WindowController.moc"

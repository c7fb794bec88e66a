#pragma once

#include "platform/Bundle.hpp"

#include <QtCore/QPointer>
#include <QtWidgets/QWidget>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace platform {

/// Owns a window that is described by a form of a bundle, "<name>.ui", and what it edits. The form's objects are bound
/// to the controller by their names: one whose name begins with an underscore to the outlet of that name, one with a
/// dynamic property "action" to the action of that name. One with an invokable awakeFromNib() is woken by it when all
/// that the form says of it is set. An outlet that the form lacks stays null. What the form names and the controller
/// does not know is a line in the system log, as is a form that cannot be loaded; there is no window then. Main thread.
class WindowController {
public:
    /// Makes a view of a class that forms may use; null for a class that it does not know.
    using ViewMaker = std::function<QWidget*(const std::string& className, QWidget* parent)>;

    WindowController(const WindowController&) = delete;
    WindowController& operator=(const WindowController&) = delete;
    virtual ~WindowController();

    /// Loaded on first use, and kept; null without a form.
    virtual QWidget* window();

protected:
    /// Null, or a name without a form, leaves the controller without a window.
    WindowController(std::shared_ptr<const Bundle> bundle, std::string formName);

    /// To be called by constructors, before the form is loaded.
    template <typename View>
    void addOutlet(const std::string& name, QPointer<View>& outlet) {
        _outlets[name] = [&outlet](QWidget* view) {
            outlet = qobject_cast<View*>(view);
            return outlet != nullptr;
        };
    }
    void addAction(const std::string& name, std::function<void()> action) { _actions[name] = std::move(action); }
    void setViewMaker(ViewMaker maker) { _makeView = std::move(maker); }

    /// Called once, with the window loaded and the outlets set.
    virtual void windowDidLoad() {}
    /// Called every time that the program shows the window, before it can be seen.
    virtual void windowWillAppear() {}

private:
    void load();
    void bindOutlet(QWidget& view);
    void bindAction(QWidget& view);
    void log(const std::string& message) const;

    std::shared_ptr<const Bundle> _bundle;
    std::string _formName;
    ViewMaker _makeView;
    std::map<std::string, std::function<bool(QWidget*)>> _outlets;
    std::map<std::string, std::function<void()>> _actions;
    bool _isLoaded = false;
    QPointer<QWidget> _window;  // a host may make it a child of a window of its own, and take it along
};

}  // namespace platform

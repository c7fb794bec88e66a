#pragma once

#include "platform/Bundle.hpp"

#include <QtWidgets/QWidget>
#include <functional>
#include <memory>
#include <string>

namespace platform {

/// The window that the bundle's form "<name>.ui" describes, with its texts in the user's language; the caller's. The
/// translations are the gettext catalogues of the domain "<bundle identifier>.<name>", whose messages are the form's
/// texts in the context of its class name. Besides Qt's classes a form may use `platform::Slider`,
/// `platform::PopUpButton`, `platform::PictureView` and those that `makeView` makes; its window, when it is a QDialog,
/// is a `platform::Sheet`. Null when there is no such form or it cannot be read, which a line in the system log tells.
/// Main thread.
QWidget* loadForm(const std::shared_ptr<const Bundle>& bundle, const std::string& name,
                  const std::function<QWidget*(const std::string& className, QWidget* parent)>& makeView);

}  // namespace platform

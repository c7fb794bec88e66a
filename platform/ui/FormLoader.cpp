#include "platform/ui/FormLoader.hpp"

#include "platform/MessageCatalogue.hpp"
#include "platform/SystemLog.hpp"
#include "platform/ui/PictureView.hpp"
#include "platform/ui/PopUpButton.hpp"
#include "platform/ui/ScrollView.hpp"
#include "platform/ui/Sheet.hpp"
#include "platform/ui/Slider.hpp"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QTranslator>
#include <QtUiTools/QUiLoader>

namespace platform {
namespace {

/// Gives a form's texts their translation while it is loaded.
class FormTranslator final : public QTranslator {
public:
    FormTranslator(const Bundle& bundle, const std::string& name)
        : _catalogue(bundle.directory() / "locale", bundle.bundleIdentifier().value_or(name) + "." + name) {
        QCoreApplication::installTranslator(this);
    }
    ~FormTranslator() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* text, const char*, int) const override {
        return *text == '\0' ? QString() : QString::fromStdString(_catalogue.translated(context, text));
    }

private:
    MessageCatalogue _catalogue;
};

class FormLoader final : public QUiLoader {
public:
    FormLoader(const Bundle& bundle, const std::string& name,
               const std::function<QWidget*(const std::string&, QWidget*)>& makeView)
        : _bundle(bundle), _name(name), _makeView(makeView) {}

    QWidget* createWidget(const QString& className, QWidget* parent, const QString& objectName) override {
        QWidget* view = makeOurs(className, parent);
        if (view == nullptr && _makeView != nullptr) {
            view = _makeView(className.toStdString(), parent);
        }
        if (view != nullptr) {
            view->setObjectName(objectName);
            return view;
        }
        if (!availableWidgets().contains(className)) {
            systemLog("form " + _name + ": there is no class " + className.toStdString());
        }
        return QUiLoader::createWidget(className, parent, objectName);
    }

private:
    QWidget* makeOurs(const QString& className, QWidget* parent) const {
        if (className == "QDialog" && parent == nullptr) {
            return new Sheet;
        }
        if (className == "platform::Slider") {
            return new Slider(parent);
        }
        if (className == "platform::ScrollView") {
            return new ScrollView(parent);
        }
        if (className == "platform::PopUpButton") {
            return new PopUpButton(parent);
        }
        return className == "platform::PictureView" ? new PictureView(_bundle.directory(), parent) : nullptr;
    }

    const Bundle& _bundle;
    const std::string& _name;
    const std::function<QWidget*(const std::string&, QWidget*)>& _makeView;
};

}  // namespace

QWidget* loadForm(const std::shared_ptr<const Bundle>& bundle, const std::string& name,
                  const std::function<QWidget*(const std::string& className, QWidget* parent)>& makeView) {
    const auto path = bundle != nullptr ? bundle->pathForResource(name, "ui") : std::nullopt;
    QFile file(path ? QString::fromStdString(path->string()) : QString());
    if (!path || !file.open(QIODevice::ReadOnly)) {
        systemLog("form " + name + ": there is none in the bundle");
        return nullptr;
    }
    const FormTranslator translator(*bundle, name);
    FormLoader loader(*bundle, name, makeView);
    QWidget* const window = loader.load(&file);
    if (window == nullptr) {
        systemLog("form " + name + ": " + loader.errorString().toStdString());
    }
    return window;
}

}  // namespace platform

#include "settings/QZLTextTriggerAccessible.hpp"

#include "settings/QZLHotLink.hpp"

#include <QtWidgets/QAccessibleWidget>

namespace {

/// What assistive technologies see of a trigger. Main thread; owned by Qt, for as long as the trigger lives.
class TextTriggerAccessible final : public QAccessibleWidget {
public:
    explicit TextTriggerAccessible(QZLTextTrigger* trigger)
        : QAccessibleWidget(trigger,
                            qobject_cast<QZLHotLink*>(trigger) != nullptr ? QAccessible::Link : QAccessible::Button) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.linked = role() == QAccessible::Link;
        return state;
    }

    QString text(QAccessible::Text kind) const override {
        const QString text = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && text.isEmpty() ? trigger().text() : text;
    }

    QStringList actionNames() const override {
        return trigger().isEnabled() ? QStringList{pressAction()} + QAccessibleWidget::actionNames() : QStringList();
    }

    void doAction(const QString& name) override {
        if (name != pressAction()) {
            QAccessibleWidget::doAction(name);
        } else if (trigger().isEnabled()) {
            trigger().trigger();
        }
    }

private:
    QZLTextTrigger& trigger() const { return *static_cast<QZLTextTrigger*>(widget()); }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object) {
    auto* trigger = qobject_cast<QZLTextTrigger*>(object);
    return trigger != nullptr ? new TextTriggerAccessible(trigger) : nullptr;
}

}  // namespace

void QZLMakeTextTriggersAccessible() {
    QAccessible::installFactory(makeAccessible);  // a factory that is there already is not added again
}

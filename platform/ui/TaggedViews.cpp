#include "platform/ui/TaggedViews.hpp"

#include <QtCore/QPointer>
#include <QtCore/QVariant>
#include <QtWidgets/QGraphicsOpacityEffect>
#include <QtWidgets/QWidget>
#include <algorithm>

namespace platform {
namespace {

constexpr const char* tagProperty = "tag";
constexpr const char* formerFocusProperty = "formerFocus";

/// An effect of ours. One that is enabled fades its view. One that is disabled costs nothing; it is there because Qt
/// leaves out what lies behind an opaque view, even when that is within a faded one, and takes no view with an effect
/// for opaque.
class Fade final : public QGraphicsOpacityEffect {
public:
    using QGraphicsOpacityEffect::QGraphicsOpacityEffect;

    double alpha() const { return _alpha; }
    /// Below 1. Qt takes what is next to it for 1 and leaves the effect out, which draws nothing at all within another.
    void setAlpha(double alpha) {
        constexpr double mostThatFades = 0.999999;
        _alpha = alpha;
        setOpacity(std::min(alpha, mostThatFades));
    }

private:
    double _alpha = 1.0;
};

Fade* fadeOf(const QWidget& view) {
    return dynamic_cast<Fade*>(view.graphicsEffect());
}

bool isFaded(const QWidget& view) {
    const Fade* fade = fadeOf(view);
    return fade != nullptr && fade->isEnabled();
}

bool isWithinFaded(const QWidget& view) {
    for (const QWidget* above = &view; !above->isWindow() && above->parentWidget() != nullptr;) {
        above = above->parentWidget();
        if (isFaded(*above)) {
            return true;
        }
    }
    return false;
}

bool paintsAllOfItself(const QWidget& view) {
    return view.autoFillBackground() || view.testAttribute(Qt::WA_OpaquePaintEvent);
}

/// Calls `call` with every view below `view` that is not in another window.
template <typename Call>
void forEachBelow(const QWidget& view, const Call& call) {
    for (QObject* object : view.children()) {
        if (object->isWidgetType()) {
            auto* child = static_cast<QWidget*>(object);
            if (!child->isWindow()) {
                call(*child);
                forEachBelow(*child, call);
            }
        }
    }
}

/// Gives a view that is not faded itself the effect that it needs within faded views, and no other of ours.
void settle(QWidget& view) {
    const bool needsEffect = paintsAllOfItself(view) && isWithinFaded(view);
    if (Fade* fade = fadeOf(view)) {
        needsEffect ? fade->setEnabled(false) : view.setGraphicsEffect(nullptr);
    } else if (needsEffect && view.graphicsEffect() == nullptr) {
        auto* behind = new Fade(&view);
        behind->setEnabled(false);
        view.setGraphicsEffect(behind);
    }
}

void settleBelow(const QWidget& view) {
    forEachBelow(view, [](QWidget& child) {
        if (!isFaded(child)) {
            settle(child);
        }
    });
}

/// Qt would hand the focus on to whatever comes next, and leave it with a hidden view when nothing is left: keys would
/// still work there.
void takeFocusFrom(QWidget& view) {
    QPointer<QWidget> focus = view.window()->focusWidget();
    if (focus != nullptr && (focus == &view || view.isAncestorOf(focus))) {
        view.setProperty(formerFocusProperty, QVariant::fromValue(focus));
        focus->clearFocus();
    }
}

void giveFocusBackTo(QWidget& view) {
    const auto former = view.property(formerFocusProperty).value<QPointer<QWidget>>();
    view.setProperty(formerFocusProperty, QVariant());
    if (former != nullptr && view.window()->focusWidget() == nullptr) {
        former->setFocus();
    }
}

}  // namespace

QWidget* viewWithTag(QWidget* root, std::int32_t tag) {
    if (root == nullptr) {
        return nullptr;
    }
    bool isNumber = false;
    if (root->property(tagProperty).toInt(&isNumber) == tag && isNumber) {
        return root;
    }
    for (QObject* object : root->children()) {
        auto* child = object->isWidgetType() ? static_cast<QWidget*>(object) : nullptr;
        if (child != nullptr && !child->isWindow()) {
            if (QWidget* found = viewWithTag(child, tag)) {
                return found;
            }
        }
    }
    return nullptr;
}

double alphaValue(const QWidget& view) {
    return isFaded(view) ? fadeOf(view)->alpha() : 1.0;
}

void setAlphaValue(QWidget& view, double alpha) {
    const bool wasFaded = isFaded(view);
    if (alpha >= 1.0) {
        if (wasFaded) {
            fadeOf(view)->setEnabled(false);
            settle(view);
            settleBelow(view);
        }
        return;
    }
    Fade* fade = fadeOf(view);
    if (fade == nullptr) {
        fade = new Fade(&view);
        view.setGraphicsEffect(fade);
    }
    fade->setAlpha(alpha > 0.0 ? alpha : 0.0);
    if (!wasFaded) {
        fade->setEnabled(true);
        settleBelow(view);
    }
}

bool isHidden(const QWidget& view) {
    // Qt also calls a view hidden that has yet to be shown with its parent.
    return view.isHidden() && view.testAttribute(Qt::WA_WState_ExplicitShowHide);
}

void setHidden(QWidget& view, bool hidden) {
    if (hidden) {
        takeFocusFrom(view);
        view.hide();
    } else {
        view.show();
        giveFocusBackTo(view);
    }
}

void keepSpaceOfTaggedViews(QWidget& root) {
    const auto keepSpace = [](QWidget& view) {
        if (view.property(tagProperty).isValid()) {
            QSizePolicy policy = view.sizePolicy();
            policy.setRetainSizeWhenHidden(true);
            view.setSizePolicy(policy);
        }
    };
    keepSpace(root);
    forEachBelow(root, keepSpace);
}

}  // namespace platform

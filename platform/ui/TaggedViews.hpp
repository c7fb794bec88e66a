#pragma once

#include <cstdint>

class QWidget;

// Views as a choreography meets them: found by number, faded and hidden. Main thread.
namespace platform {

/// The first view, in depth-first order from `root` itself, whose dynamic property "tag" is this number; null when
/// there is none. Other windows below `root` are not looked into.
QWidget* viewWithTag(QWidget* root, std::int32_t tag);

/// How opaque a view is drawn, with all that is in it: from 0 to 1.
double alphaValue(const QWidget& view);
/// A value that is out of range counts as the nearest in it, not-a-number as 0. Views within a faded view may be faded
/// too; what is to be drawn faded with them must be in them when they are first faded. Replaces a graphics effect that
/// the view already has; at 1 the view has none of ours.
void setAlphaValue(QWidget& view, double alpha);

/// Whether this view itself was hidden, whatever its parents are.
bool isHidden(const QWidget& view);
/// A view that is hidden leaves nobody the focus that was in it, so that no key does what cannot be seen; shown again,
/// it gets it back if nobody has it meanwhile.
void setHidden(QWidget& view, bool hidden);

/// From now on tagged views from `root` on down keep their place in their layouts when they are hidden.
void keepSpaceOfTaggedViews(QWidget& root);

}  // namespace platform

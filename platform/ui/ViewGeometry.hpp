#pragma once

#include "platform/Geometry.hpp"

#include <QtCore/QRect>
#include <QtCore/QRectF>

namespace platform {

// Views have their origin at the bottom left, widgets at the top left: the one place where these meet. Lengths are in
// points; `height` is that of the view that the rectangle lies in.

/// A view's rectangle as Qt sees it.
QRectF toWidget(const Rect& rect, double height);
/// The same in whole points, for places of widgets.
QRect toWholeWidget(const Rect& rect, double height);
/// A widget's rectangle as a view sees it.
Rect toView(const QRectF& rect, double height);

}  // namespace platform

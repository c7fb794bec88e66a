// The strip of frame statistics along the view's bottom edge.
#include "foundation/QZLBundle.hpp"
#include "platform/StringFormat.hpp"
#include "platform/ui/ViewGeometry.hpp"
#include "view/QZLScreenSaverView.hpp"

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr double stripsPerHeight = 27.0;
constexpr double minimumStripHeight = 16.0;  // points
constexpr double fontSizePerHeight = 0.75;
/// A strip that is longer than this many times its height has room for the long line.
constexpr double normalFormatRatio = 30.0;
constexpr std::chrono::milliseconds updateInterval{250};
constexpr double millisecondsPerSecond = 1000.0;
constexpr double percent = 100.0;

const QColor stripColor = QColor::fromRgbF(0.0F, 0.0F, 1.0F, 0.6F);

}  // namespace

void QZLScreenSaverView::setShowDiagnostics(bool show) {
    if (show == showDiagnostics()) {
        return;
    }
    if (!show) {
        delete std::exchange(_diagnosticTimer, nullptr);
        removeOverlay(_diagnosticText);
        delete std::exchange(_diagnosticText, nullptr);
        return;
    }
    const double stripHeight = std::max(height() / stripsPerHeight, minimumStripHeight);
    _diagnosticText = new platform::TextField(this);
    _diagnosticText->setFrame({0.0, 0.0, static_cast<double>(width()), stripHeight});
    _diagnosticText->setTextFont(platform::userFixedPitchFont(fontSizePerHeight * stripHeight));
    _diagnosticText->setBackgroundColor(stripColor);
    _diagnosticText->setTextColor(Qt::white);
    _diagnosticText->show();
    addOverlay(_diagnosticText);

    const bool hasRoom = width() / stripHeight > normalFormatRatio;
    _diagnosticTextFormat =
        QZLLocalizedVistashadeString(hasRoom ? "QZL_DIAG_FORMAT_NORMAL" : "QZL_DIAG_FORMAT_PREVIEW");

    _diagnosticTimer = new QTimer(this);
    QObject::connect(_diagnosticTimer, &QTimer::timeout, this, [this] { updateDiagnosticText(); });
    _diagnosticTimer->start(updateInterval);
}

std::string QZLScreenSaverView::diagnosticText() const {
    const double preparation = _statistics->framePreparationTime();
    const double rendering = _statistics->frameRenderingTime();
    const double busy = preparation + rendering;
    const double selectedFrameRate = _renderer != nullptr ? _renderer->selectedFrameRate() : 0.0;
    return platform::formatted(_diagnosticTextFormat, _statistics->frameRate(), preparation * millisecondsPerSecond,
                               rendering * millisecondsPerSecond, busy * millisecondsPerSecond,
                               selectedFrameRate * busy * percent,
                               _statistics->frameElapsedTime() * millisecondsPerSecond);
}

void QZLScreenSaverView::updateDiagnosticText() {
    _diagnosticText->setStringValue(diagnosticText());
    updateOverlays();
}

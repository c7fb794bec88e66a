#include "saver/QZLCirraneEasterEggs.hpp"

#include <cstdint>
#include <iterator>

namespace {

constexpr std::int64_t out = QZLEasterEggSequence::fadeOut;
constexpr std::int64_t in = QZLEasterEggSequence::fadeIn;

// Start and duration in seconds, action, first tag, number of tags.

constexpr QZLEasterEggSequence dedication[] = {
    {0.0, 1.6, out, 300, 5},   //
    {2.1, 1.6, in, 400, 2},    // the heading and the first line
    {5.1, 1.6, out, 401, 1},   //
    {7.2, 1.6, in, 402, 1},    //
    {10.2, 1.6, out, 402, 1},  //
    {12.3, 1.6, in, 403, 1},   //
    {15.3, 1.6, out, 403, 1},  //
    {17.4, 1.6, in, 404, 1},   //
    {20.4, 1.6, out, 404, 1},  // the last line, together with
    {20.4, 1.6, out, 400, 1},  // the heading
    {22.5, 1.6, in, 300, 5},
};

constexpr QZLEasterEggSequence extraShow[] = {{0.0, 0.3, out, 100, 18}, {0.6, 0.3, in, 200, 4}};
constexpr QZLEasterEggSequence extraHide[] = {{0.0, 0.3, out, 200, 4}, {0.6, 0.3, in, 100, 18}};

}  // namespace

std::shared_ptr<QZLEasterEggAnimator> QZLCreateDedicationEasterEggAnimator(QWidget* view) {
    return QZLEasterEggAnimator::create(view, dedication, std::size(dedication));
}

std::shared_ptr<QZLEasterEggAnimator> QZLCreateExtraShowEasterEggAnimator(QWidget* view) {
    return QZLEasterEggAnimator::create(view, extraShow, std::size(extraShow));
}

std::shared_ptr<QZLEasterEggAnimator> QZLCreateExtraHideEasterEggAnimator(QWidget* view) {
    return QZLEasterEggAnimator::create(view, extraHide, std::size(extraHide));
}

#pragma once

#include "host/PointerTravel.hpp"

#include <chrono>

class QEvent;

namespace host {

/// Tells what a person does to the machine, which ends a full-screen saver, from all else that windows are told of:
/// focus that comes and goes, keys that were held down before, and the pointer that a window is mapped under or that
/// another arrangement of the screens has moved. One for all screens. Main thread.
class Dismissal {
public:
    /// Any window was told of this event at this moment. True when it shall end the saver.
    bool isAskedForBy(const QEvent& event, std::chrono::milliseconds now);

    /// Other screens, or screens in other places: the pointer may be elsewhere without anybody having moved it.
    void screensChanged() { _pointer.forget(); }

private:
    PointerTravel _pointer;
};

}  // namespace host

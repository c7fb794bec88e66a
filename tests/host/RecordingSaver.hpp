#pragma once

#include "platform/SaverModule.hpp"

#include <string>
#include <vector>

class QWidget;

namespace platform {
class ScreenSaverView;
}

namespace fake {

/// A saver whose views draw nothing and write down what they are asked to do, one line each: "make 640x360 preview",
/// "start 640x360", "stop", "error 303:0", "sheet", "end". One at a time. Main thread.
class RecordingSaver {
public:
    RecordingSaver();
    ~RecordingSaver();
    RecordingSaver(const RecordingSaver&) = delete;
    RecordingSaver& operator=(const RecordingSaver&) = delete;

    const platform::SaverModule* module() const;
    const std::vector<std::string>& lines() const { return _lines; }
    void forgetLines() { _lines.clear(); }
    /// The view that was made last, while it lives.
    platform::ScreenSaverView* newestView() const { return _newestView; }

    /// From now on every start is an error of code 108.
    void setStartFails(bool startFails) { _startFails = startFails; }
    /// The views' settings sheet, which the caller owns; null for none.
    void setSheet(QWidget* sheet) { _sheet = sheet; }
    void setMakesNoView(bool makesNoView) { _makesNoView = makesNoView; }

private:
    class View;
    static platform::ScreenSaverView* createView(const platform::Rect& frame, bool isPreview) noexcept;

    std::vector<std::string> _lines;
    platform::ScreenSaverView* _newestView = nullptr;
    QWidget* _sheet = nullptr;
    bool _startFails = false;
    bool _makesNoView = false;
};

}  // namespace fake

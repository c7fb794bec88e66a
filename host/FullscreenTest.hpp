#pragma once

#include <QtCore/QProcess>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace host {

/// This program, run once more over every screen, as long as the person at the machine likes it. Whatever is still
/// running ends with this object. Main thread.
class FullscreenTest {
public:
    /// Program and arguments.
    explicit FullscreenTest(std::vector<std::string> command);
    ~FullscreenTest();
    FullscreenTest(const FullscreenTest&) = delete;
    FullscreenTest& operator=(const FullscreenTest&) = delete;

    /// Does nothing while it runs.
    void start();

    /// Called from the event loop when it has ended or could not be started, with what went wrong, if anything did; an
    /// empty text when it did not say what.
    void setEndHandler(std::function<void(const std::optional<std::string>& failure)> handler) {
        _ended = std::move(handler);
    }

private:
    void end();
    std::string lastWords();

    const std::vector<std::string> _command;
    std::function<void(const std::optional<std::string>&)> _ended;
    QProcess _process;
};

}  // namespace host

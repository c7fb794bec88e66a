#pragma once

#include "tests/host/Process.hpp"
#include "tests/hosts/Home.hpp"

#include <sys/types.h>

#include <memory>
#include <string>
#include <vector>

namespace hosts {

/// The XScreenSaver daemon on the test's display, which knows one saver: the given line.
class XScreenSaver {
public:
    explicit XScreenSaver(const std::string& line);
    ~XScreenSaver();
    XScreenSaver(const XScreenSaver&) = delete;
    XScreenSaver& operator=(const XScreenSaver&) = delete;

    void activate() const { command("-activate"); }
    void deactivate() const { command("-deactivate"); }
    /// Ends the saver and starts it again, as the daemon does every ten minutes.
    void cycle() const { command("-cycle"); }

    const Home& home() const { return _home; }

private:
    fake::ProcessEnd send(const std::string& request) const;
    void command(const std::string& request) const;

    Home _home;
    std::unique_ptr<fake::Process> _daemon;
};

/// The processes of the program under test on the test's display; those that have ended but were not waited for do not
/// count.
std::vector<pid_t> runningSavers();

}  // namespace hosts

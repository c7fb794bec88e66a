#pragma once

#include "tests/host/Process.hpp"
#include "tests/hosts/Home.hpp"
#include "tests/hosts/Picture.hpp"

#include <signal.h>

#include <memory>
#include <string>
#include <vector>

namespace hosts {

/// A Wayland session of the test's own, without a screen, drawn in software.
class Compositor {
public:
    virtual ~Compositor();
    Compositor(const Compositor&) = delete;
    Compositor& operator=(const Compositor&) = delete;

    /// For programs that run in this session.
    std::vector<std::string> environment() const;
    const Home& home() const { return _home; }

    /// Keeps the compositor from answering anybody until it is thawed.
    void freeze() const { _process->sendSignal(SIGSTOP); }
    void thaw() const { _process->sendSignal(SIGCONT); }
    /// Ends the session, whoever is still in it.
    void end();

protected:
    Compositor() = default;
    void start(const std::vector<std::string>& command, const std::vector<std::string>& additions = {});
    /// Runs a program of the session to its end, which must be a good one.
    void run(const std::vector<std::string>& command) const;
    static std::string socketName() { return "wayland-1"; }

private:
    Home _home;
    std::unique_ptr<fake::Process> _process;
};

/// A tiling compositor, whose windows fill their output. Its first output is HEADLESS-1, the next HEADLESS-2.
class Sway final : public Compositor {
public:
    explicit Sway(Size outputSize, int scale = 1);

    void addOutput(const std::string& name, Size size, int scale = 1);
    /// For its clients the output is gone.
    void disableOutput(const std::string& name) { tell("output " + name + " disable"); }
    void enableOutput(const std::string& name) { tell("output " + name + " enable"); }
    void setResolution(const std::string& name, Size size);
    void setScale(const std::string& name, int scale);
    void showWorkspace(const std::string& name) { tell("workspace " + name); }

    Picture picture(const std::string& output = "HEADLESS-1") const;

private:
    void tell(const std::string& command);
};

/// The reference compositor, with floating windows on one output.
class Weston final : public Compositor {
public:
    explicit Weston(Size outputSize, int scale = 1);

    Picture picture() const;
};

}  // namespace hosts

#pragma once

#include "tests/host/Display.hpp"
#include "tests/host/Process.hpp"
#include "tests/host/VirtualServer.hpp"
#include "tests/hosts/Home.hpp"
#include "tests/hosts/Picture.hpp"

#include <signal.h>

#include <memory>
#include <nlohmann/json.hpp>
#include <set>
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

/// A tiling compositor, whose windows fill their output. Its outputs are windows on an X server of its own, because
/// only such ones can be taken away; the first is X11-1, and each that is added has the next number.
class Sway final : public Compositor {
public:
    explicit Sway(Size outputSize, int scale = 1);

    void addOutput(const std::string& name, Size size, int scale = 1);
    /// Takes away the one output of that resolution.
    void removeOutput(Size size);
    bool hasOutputs() const;
    void setResolution(const std::string& name, Size size);
    void setScale(const std::string& name, int scale);
    void showWorkspace(const std::string& name) { tell("workspace " + name); }

    Picture picture(const std::string& output = "X11-1") const;
    /// The names of the outputs that have a window from edge to edge.
    std::set<std::string> coveredOutputs() const;

private:
    void tell(const std::string& command);
    nlohmann::json outputs() const;

    fake::VirtualServer _server;
    std::unique_ptr<fake::Display> _display;
};

/// The reference compositor, with floating windows on one output.
class Weston final : public Compositor {
public:
    explicit Weston(Size outputSize, int scale = 1);

    Picture picture() const;
};

}  // namespace hosts

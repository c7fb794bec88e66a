#include "tests/hosts/Compositor.hpp"

#include <gtest/gtest.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <string>

namespace hosts {
namespace {

std::string text(Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

/// Whether a window, or one of those within a container of sway's tree, has that place.
bool holdsWindowAt(const nlohmann::json& container, const nlohmann::json& place) {
    if (container.contains("pid") && container.at("rect") == place) {
        return true;
    }
    const auto& inside = container.at("nodes");
    return std::any_of(inside.begin(), inside.end(),
                       [&](const nlohmann::json& each) { return holdsWindowAt(each, place); });
}

}  // namespace

Compositor::~Compositor() {
    end();
}

void Compositor::end() {
    if (_process != nullptr) {
        thaw();
        _process->sendSignal(SIGTERM);
        EXPECT_TRUE(_process->waitForEnd()) << "the compositor did not end";
        _process.reset();
    }
}

std::vector<std::string> Compositor::environment() const {
    return _home.environment() + std::vector<std::string>{"WAYLAND_DISPLAY=" + socketName(), "DISPLAY",
                                                          "SWAYSOCK=" + (_home.path() / "sway.socket").string()};
}

void Compositor::start(const std::vector<std::string>& command, const std::vector<std::string>& additions) {
    std::vector<std::string> variables = environment() + additions;
    variables.emplace_back("WAYLAND_DISPLAY");  // it is to make that display, not to run on it
    _process = std::make_unique<fake::Process>(fake::endingWithTest(command), variables, fake::Output::Files);
    const auto socket = _home.runtimeDirectory() / socketName();
    if (!fake::eventually([&] { return std::filesystem::exists(socket) || !_process->isRunning(); }) ||
        !_process->isRunning()) {
        ADD_FAILURE() << "the compositor did not start: " << command.front();
    }
}

void Compositor::run(const std::vector<std::string>& command) const {
    const auto end =
        runTool(command, environment() + std::vector<std::string>{"XDG_PICTURES_DIR=" + home().path().string()});
    EXPECT_EQ(end.exitStatus, 0) << command.front() << ": " << end.standardOutput << end.standardError;
}

Sway::Sway(Size outputSize, int scale) {
    _server.useAsDisplay();
    _display = std::make_unique<fake::Display>();
    for (const char* name : {"WM_PROTOCOLS", "WM_DELETE_WINDOW", "_NET_WM_NAME", "UTF8_STRING"}) {
        _display->atom(name);  // sway makes none, and closes no window without
    }
    const auto configuration = home().path() / "sway";
    std::ofstream(configuration) << "xwayland disable\n"
                                    "default_border none\n"
                                    "output X11-1 resolution "
                                 << text(outputSize) << " position 0 0 scale " << scale << '\n';
    // Windows that are scanned out are in no picture.
    start({"/usr/bin/sway", "-Dnoscanout", "--config", configuration},
          {"WLR_BACKENDS=x11", "WLR_RENDERER=pixman", "DISPLAY=" + _server.name()});
    const auto answers = [this] {
        return runTool({"/usr/bin/swaymsg", "--type", "get_version"}, environment()).exitStatus == 0;
    };
    EXPECT_TRUE(fake::eventually(answers)) << "sway answers no messages";
}

void Sway::addOutput(const std::string& name, Size size, int scale) {
    tell("output " + name + " resolution " + text(size) + " scale " + std::to_string(scale));
    tell("create_output");
}

void Sway::setResolution(const std::string& name, Size size) {
    tell("output " + name + " resolution " + text(size));
}

void Sway::setScale(const std::string& name, int scale) {
    tell("output " + name + " scale " + std::to_string(scale));
}

Picture Sway::picture(const std::string& output) const {
    const auto file = home().path() / "screen.png";
    run({"/usr/bin/grim", "-o", output, file});
    return Picture::ofPng(file);
}

void Sway::removeOutput(Size size) {
    for (const xcb_window_t output : _display->windowsBelow(_display->root())) {
        const auto [width, height] = _display->sizeOf(output);
        if (Size{width, height} == size) {
            const std::size_t before = outputs().size();
            _display->askToClose(output);
            EXPECT_TRUE(fake::eventually([&] { return outputs().size() < before; })) << "the output stays";
            return;
        }
    }
    ADD_FAILURE() << "there is no output of " << text(size);
}

nlohmann::json Sway::outputs() const {
    const auto told = runTool({"/usr/bin/swaymsg", "--raw", "--type", "get_tree"}, environment());
    const auto tree = nlohmann::json::parse(told.standardOutput);
    nlohmann::json found = nlohmann::json::array();
    for (const auto& output : tree.at("nodes")) {
        if (output.at("name") != "__i3") {  // where windows lie that are on none
            found.push_back(output);
        }
    }
    return found;
}

bool Sway::hasOutputs() const {
    return !outputs().empty();
}

std::set<std::string> Sway::coveredOutputs() const {
    std::set<std::string> covered;
    for (const auto& output : outputs()) {
        if (holdsWindowAt(output, output.at("rect"))) {
            covered.insert(output.at("name").get<std::string>());
        }
    }
    return covered;
}

void Sway::tell(const std::string& command) {
    run({"/usr/bin/swaymsg", command});
}

Weston::Weston(Size outputSize, int scale) {
    const auto configuration = home().path() / "weston.ini";
    std::ofstream(configuration) << "[shell]\npanel-position=none\n";  // its clock moves too
    start({"/usr/bin/weston", "--backend=headless-backend.so", "--use-pixman", "--config=" + configuration.string(),
           "--idle-time=0",
           "--debug",  // without it nobody may take pictures
           "--socket=" + socketName(), "--width=" + std::to_string(outputSize.width / scale),
           "--height=" + std::to_string(outputSize.height / scale), "--scale=" + std::to_string(scale)});
}

Picture Weston::picture() const {
    run({"/usr/bin/weston-screenshooter"});
    Picture picture;
    for (const auto& entry : std::filesystem::directory_iterator(home().path())) {
        if (entry.path().extension() == ".png") {
            picture = Picture::ofPng(entry.path());
            std::filesystem::remove(entry.path());
        }
    }
    return picture;
}

}  // namespace hosts

#include "tests/hosts/XServer.hpp"

#include "tests/hosts/Home.hpp"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace hosts {
namespace {

std::string text(Size size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

void changeMode(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{"/usr/bin/xrandr"};
    command.insert(command.end(), arguments.begin(), arguments.end());
    const auto end = runTool(command, {});
    EXPECT_EQ(end.exitStatus, 0) << end.standardError;
}

/// A mode of 60 Hz as xrandr is told of it: the pixel clock in MHz, then the times of each direction.
std::vector<std::string> modeLine(Size size) {
    const int total[] = {size.width + 160, size.height + 20};
    const double clock = 60.0 * total[0] * total[1] / 1e6;
    std::vector<std::string> line{"--newmode", text(size), std::to_string(clock)};
    for (const int length : {size.width, size.width + 48, size.width + 80, total[0],  //
                             size.height, size.height + 3, size.height + 7, total[1]}) {
        line.push_back(std::to_string(length));
    }
    return line;
}

}  // namespace

XServer::XServer(Size largest) : _server(text(largest)), _modes{text(largest)} {
    _server.useAsDisplay();
    _display = std::make_unique<fake::Display>();
}

Picture XServer::picture() const {
    return pictureOf(_display->root());
}

Picture XServer::pictureOf(xcb_window_t window) const {
    const auto bytes = _display->pixels(window);
    const auto [width, height] = _display->sizeOf(window);
    std::vector<Colour> pixels;
    pixels.reserve(bytes.size() / 4);
    for (std::size_t i = 0; i + 3 < bytes.size(); i += 4) {
        pixels.push_back({bytes[i + 2], bytes[i + 1], bytes[i]});
    }
    // The window may have got another size between the two questions.
    return pixels.size() == std::size_t{width} * height ? Picture(Size{width, height}, std::move(pixels)) : Picture();
}

void XServer::setMode(Size size) {
    if (_modes.insert(text(size)).second) {
        changeMode(modeLine(size));
        changeMode({"--addmode", "screen", text(size)});
    }
    changeMode({"--output", "screen", "--mode", text(size)});
}

void XServer::waitForWindowManager() {
    xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const xcb_window_t probe = xcb_generate_id(connection);
    xcb_create_window(connection, XCB_COPY_FROM_PARENT, probe, root, 0, 0, 50, 50, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      XCB_COPY_FROM_PARENT, 0, nullptr);
    EXPECT_TRUE(fake::eventually([&] {
        xcb_map_window(connection, probe);
        const fake::Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(connection, xcb_query_tree(connection, probe), nullptr));
        return tree != nullptr && tree->parent != root;  // it has got a frame
    })) << "no window manager came";
    xcb_destroy_window(connection, probe);
    xcb_disconnect(connection);
}

}  // namespace hosts

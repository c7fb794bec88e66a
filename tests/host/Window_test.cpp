#include "tests/host/Process.hpp"

#include <gtest/gtest.h>
#include <signal.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

/// What a person at the X display sees and does.
class Display {
public:
    Display() : _connection(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(_connection) != 0) {
            ADD_FAILURE() << "these tests need an X display: run them through ./test";
            std::abort();
        }
        _root = xcb_setup_roots_iterator(xcb_get_setup(_connection)).data->root;
    }
    ~Display() { xcb_disconnect(_connection); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    /// The mapped top-level window of that title.
    std::optional<xcb_window_t> findWindow(const std::string& title) const {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(_connection, xcb_query_tree(_connection, _root), nullptr));
        const xcb_window_t* children = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            if (titleOf(children[i]) == title && isMapped(children[i])) {
                return children[i];
            }
        }
        return {};
    }

    /// Blue, green, red, unused per pixel; empty when the window is not there.
    std::vector<std::uint8_t> pixels(xcb_window_t window) const {
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(_connection, xcb_get_geometry(_connection, window), nullptr));
        if (geometry == nullptr) {
            return {};
        }
        const Reply<xcb_get_image_reply_t> image(
            xcb_get_image_reply(_connection,
                                xcb_get_image(_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, _root, geometry->x, geometry->y,
                                              geometry->width, geometry->height, ~0U),
                                nullptr));
        if (image == nullptr) {
            return {};
        }
        const std::uint8_t* data = xcb_get_image_data(image.get());
        return {data, data + xcb_get_image_data_length(image.get())};
    }

    void setMapped(xcb_window_t window, bool mapped) const {
        mapped ? xcb_map_window(_connection, window) : xcb_unmap_window(_connection, window);
        xcb_flush(_connection);
    }

    void resize(xcb_window_t window, std::uint32_t width, std::uint32_t height) const {
        const std::uint32_t size[] = {width, height};
        xcb_configure_window(_connection, window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
        xcb_flush(_connection);
    }

    /// A key press as a window manager's client would get it.
    void pressKey(xcb_window_t window, std::uint32_t keysym) const {
        xcb_key_press_event_t event{};
        event.response_type = XCB_KEY_PRESS;
        event.detail = keycodeOf(keysym);
        event.root = _root;
        event.event = window;
        event.same_screen = 1;
        xcb_send_event(_connection, 0, window, XCB_EVENT_MASK_KEY_PRESS, reinterpret_cast<const char*>(&event));
        xcb_flush(_connection);
    }

    /// What a window manager sends when the close button is clicked.
    void askToClose(xcb_window_t window) const {
        xcb_client_message_event_t event{};
        event.response_type = XCB_CLIENT_MESSAGE;
        event.format = 32;
        event.window = window;
        event.type = atom("WM_PROTOCOLS");
        event.data.data32[0] = atom("WM_DELETE_WINDOW");
        xcb_send_event(_connection, 0, window, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&event));
        xcb_flush(_connection);
    }

private:
    xcb_atom_t atom(const std::string& name) const {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            _connection, xcb_intern_atom(_connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
            nullptr));
        return reply->atom;
    }

    std::string titleOf(xcb_window_t window) const {
        const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(
            _connection,
            xcb_get_property(_connection, 0, window, atom("_NET_WM_NAME"), XCB_GET_PROPERTY_TYPE_ANY, 0, 64), nullptr));
        if (reply == nullptr) {
            return {};
        }
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                static_cast<std::size_t>(xcb_get_property_value_length(reply.get()))};
    }

    bool isMapped(xcb_window_t window) const {
        const Reply<xcb_get_window_attributes_reply_t> reply(
            xcb_get_window_attributes_reply(_connection, xcb_get_window_attributes(_connection, window), nullptr));
        return reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }

    xcb_keycode_t keycodeOf(std::uint32_t keysym) const {
        const xcb_setup_t* setup = xcb_get_setup(_connection);
        const auto count = static_cast<std::uint8_t>(setup->max_keycode - setup->min_keycode + 1);
        const Reply<xcb_get_keyboard_mapping_reply_t> mapping(xcb_get_keyboard_mapping_reply(
            _connection, xcb_get_keyboard_mapping(_connection, setup->min_keycode, count), nullptr));
        const xcb_keysym_t* symbols = xcb_get_keyboard_mapping_keysyms(mapping.get());
        for (int i = 0; i < count; ++i) {
            if (symbols[i * mapping->keysyms_per_keycode] == keysym) {
                return static_cast<xcb_keycode_t>(setup->min_keycode + i);
            }
        }
        return 0;
    }

    xcb_connection_t* _connection;
    xcb_window_t _root;
};

/// The mean brightness of a picture's colour bytes.
double brightness(const std::vector<std::uint8_t>& pixels) {
    double sum = 0.0;
    for (std::size_t i = 0; i + 3 < pixels.size(); i += 4) {
        sum += pixels[i] + pixels[i + 1] + pixels[i + 2];
    }
    return pixels.empty() ? 0.0 : sum / (static_cast<double>(pixels.size()) * 0.75);
}

/// The mean difference of two pictures' colour bytes.
double difference(const std::vector<std::uint8_t>& a, const std::vector<std::uint8_t>& b) {
    double sum = 0.0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        sum += i % 4 == 3 ? 0.0 : std::abs(a[i] - b[i]);
    }
    return a.empty() ? 0.0 : sum / (static_cast<double>(a.size()) * 0.75);
}

class Window : public testing::Test {
protected:
    explicit Window() : _process({fake::cirraneProgram(), "--validate"}, {"WAYLAND_DISPLAY"}) {}

    void SetUp() override {
        ASSERT_TRUE(fake::eventually([&] { return window().has_value(); })) << "no window appeared";
        ASSERT_TRUE(fake::eventually([&] { return brightness(_display.pixels(*window())) > 30.0; }))
            << "no clouds appeared";
    }

    std::optional<xcb_window_t> window() const { return _display.findWindow("Cirrane"); }

    fake::ProcessEnd end() {
        const auto ended = _process.waitForEnd(std::chrono::seconds(20));
        EXPECT_TRUE(ended) << "it did not end";
        return ended.value_or(fake::ProcessEnd{});
    }

    void expectCleanEnd() {
        const fake::ProcessEnd ended = end();
        EXPECT_EQ(ended.exitStatus, 0);
        EXPECT_EQ(ended.standardError, "") << "validation must have nothing to say";
    }

    Display _display;
    fake::Process _process;
};

TEST_F(Window, ShowsCloudsThatMoveSmoothly) {
    const auto first = _display.pixels(*window());
    std::vector<std::uint8_t> second;
    ASSERT_TRUE(fake::eventually([&] {
        second = _display.pixels(*window());
        return second != first;
    })) << "the picture stands still";
    ASSERT_EQ(second.size(), first.size());
    EXPECT_LT(difference(first, second), 40.0);
    _display.pressKey(*window(), 0xff1b);
    expectCleanEnd();
}

TEST_F(Window, EscapeEndsTheProgramWell) {
    _display.pressKey(*window(), 0xff1b);
    expectCleanEnd();
}

TEST_F(Window, TheLetterQEndsTheProgramWell) {
    _display.pressKey(*window(), 'q');
    expectCleanEnd();
}

TEST_F(Window, ClosingItEndsTheProgramWell) {
    _display.askToClose(*window());
    expectCleanEnd();
}

TEST_F(Window, AResizedWindowIsFilledAgain) {
    _display.resize(*window(), 900, 500);
    ASSERT_TRUE(fake::eventually([&] {
        const auto pixels = _display.pixels(*window());
        return pixels.size() == 900U * 500 * 4 && brightness(pixels) > 30.0;
    }));
    for (std::uint32_t step = 0; step < 30; ++step) {
        _display.resize(*window(), 300 + 20 * step, 700 - 15 * step);
    }
    ASSERT_TRUE(fake::eventually([&] {
        const auto pixels = _display.pixels(*window());
        return pixels.size() == 880U * 265 * 4 && brightness(pixels) > 30.0;
    }));
    _display.askToClose(*window());
    expectCleanEnd();
}

TEST_F(Window, AWindowThatWasHiddenShowsCloudsAgain) {
    const xcb_window_t hidden = *window();
    for (int round = 0; round < 5; ++round) {
        _display.setMapped(hidden, false);
        ASSERT_TRUE(fake::eventually([&] { return !window().has_value(); }));
        _display.setMapped(hidden, true);
        ASSERT_TRUE(fake::eventually([&] { return window() == hidden && brightness(_display.pixels(hidden)) > 30.0; }))
            << "round " << round;
    }
    _display.askToClose(hidden);
    expectCleanEnd();
}

class WindowSignal : public Window, public testing::WithParamInterface<int> {};

TEST_P(WindowSignal, EndsTheProgramByItsDefaultAction) {
    _process.sendSignal(GetParam());
    const fake::ProcessEnd ended = end();
    EXPECT_EQ(ended.signal, GetParam());
    EXPECT_EQ(ended.standardError, "") << "validation must have nothing to say";
}

INSTANTIATE_TEST_SUITE_P(Window, WindowSignal, testing::Values(SIGTERM, SIGINT));

}  // namespace

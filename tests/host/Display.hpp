#pragma once

#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xtest.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fake {

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

/// A window's place on the screen.
struct Place {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    auto operator<=>(const Place&) const = default;
};

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

    xcb_window_t root() const { return _root; }

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

    /// Where all mapped top-level windows of that title lie on the screen, in some order.
    std::vector<Place> placesOfWindows(const std::string& title) const {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(_connection, xcb_query_tree(_connection, _root), nullptr));
        std::vector<Place> places;
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const xcb_window_t child = xcb_query_tree_children(tree.get())[i];
            const Reply<xcb_get_geometry_reply_t> geometry(
                xcb_get_geometry_reply(_connection, xcb_get_geometry(_connection, child), nullptr));
            if (geometry != nullptr && titleOf(child) == title && isMapped(child)) {
                places.push_back({geometry->x, geometry->y, geometry->width, geometry->height});
            }
        }
        return places;
    }

    /// Blue, green, red, unused per pixel; empty when the window is not there.
    std::vector<std::uint8_t> pixels(xcb_window_t window) const {
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(_connection, xcb_get_geometry(_connection, window), nullptr));
        return geometry != nullptr ? pixels({geometry->x, geometry->y, geometry->width, geometry->height})
                                   : std::vector<std::uint8_t>();
    }
    std::vector<std::uint8_t> pixels(const Place& place) const {
        const Reply<xcb_get_image_reply_t> image(xcb_get_image_reply(
            _connection,
            xcb_get_image(_connection, XCB_IMAGE_FORMAT_Z_PIXMAP, _root, static_cast<std::int16_t>(place.x),
                          static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width),
                          static_cast<std::uint16_t>(place.height), ~0U),
            nullptr));
        if (image == nullptr) {
            return {};
        }
        const std::uint8_t* data = xcb_get_image_data(image.get());
        return {data, data + xcb_get_image_data_length(image.get())};
    }

    /// A mapped window of the test's own, whose events of these kinds come to `nextEvent`.
    xcb_window_t makeWindow(std::uint16_t width, std::uint16_t height, std::uint32_t events) const {
        const xcb_window_t window = xcb_generate_id(_connection);
        const std::uint32_t values[] = {0, 1, events};  // black; out of any window manager's hands
        xcb_create_window(_connection, XCB_COPY_FROM_PARENT, window, _root, 40, 30, width, height, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
        xcb_map_window(_connection, window);
        settle();
        return window;
    }
    /// One that is not mapped, of that depth and with a visual for it.
    xcb_window_t makeHiddenWindow(std::uint16_t width, std::uint16_t height, std::uint8_t depth) const {
        const xcb_window_t window = xcb_generate_id(_connection);
        const xcb_visualid_t visual = visualOf(depth);
        const xcb_colormap_t colors = xcb_generate_id(_connection);
        xcb_create_colormap(_connection, XCB_COLORMAP_ALLOC_NONE, colors, _root, visual);
        const std::uint32_t values[] = {0, 0, 1, colors};  // another depth than the root's needs a border and colours
        xcb_create_window(_connection, depth, window, _root, 40, 30, width, height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                          visual, XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_COLORMAP,
                          values);
        settle();
        return window;
    }
    /// One that nothing can be drawn in.
    xcb_window_t makeInputOnlyWindow() const {
        const xcb_window_t window = xcb_generate_id(_connection);
        xcb_create_window(_connection, 0, window, _root, 40, 30, 100, 100, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                          XCB_COPY_FROM_PARENT, 0, nullptr);
        settle();
        return window;
    }
    void destroy(xcb_window_t window) const {
        xcb_destroy_window(_connection, window);
        settle();
    }
    /// The next event of that type that a window of the test's own was sent, if one has come.
    bool takeEvent(std::uint8_t type, xcb_window_t window) const {
        while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(_connection)}) {
            const auto* button = reinterpret_cast<const xcb_button_press_event_t*>(event.get());
            if ((event->response_type & 0x7f) == type && button->event == window) {
                return true;
            }
        }
        return false;
    }

    /// Puts the pointer there, as a person's hand would.
    void movePointer(std::int16_t x, std::int16_t y) const { fakeInput(XCB_MOTION_NOTIFY, 0, x, y); }
    void clickButton() const {
        fakeInput(XCB_BUTTON_PRESS, 1);
        fakeInput(XCB_BUTTON_RELEASE, 1);
    }
    void typeKey(std::uint32_t keysym) const {
        fakeInput(XCB_KEY_PRESS, keycodeOf(keysym));
        fakeInput(XCB_KEY_RELEASE, keycodeOf(keysym));
    }

    void focus(xcb_window_t window) const {
        xcb_set_input_focus(_connection, XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
        settle();
    }

    /// The windows below that one, at any depth.
    std::vector<xcb_window_t> windowsBelow(xcb_window_t window) const {
        const Reply<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(_connection, xcb_query_tree(_connection, window), nullptr));
        std::vector<xcb_window_t> all;
        for (int i = 0; tree != nullptr && i < xcb_query_tree_children_length(tree.get()); ++i) {
            const xcb_window_t child = xcb_query_tree_children(tree.get())[i];
            all.push_back(child);
            const auto below = windowsBelow(child);
            all.insert(all.end(), below.begin(), below.end());
        }
        return all;
    }
    bool isMapped(xcb_window_t window) const {
        const Reply<xcb_get_window_attributes_reply_t> reply(
            xcb_get_window_attributes_reply(_connection, xcb_get_window_attributes(_connection, window), nullptr));
        return reply != nullptr && reply->map_state == XCB_MAP_STATE_VIEWABLE;
    }
    /// What anybody has selected on a window.
    std::uint32_t selectedEvents(xcb_window_t window) const {
        const Reply<xcb_get_window_attributes_reply_t> attributes(
            xcb_get_window_attributes_reply(_connection, xcb_get_window_attributes(_connection, window), nullptr));
        return attributes != nullptr ? attributes->all_event_masks : 0;
    }
    std::pair<std::uint16_t, std::uint16_t> sizeOf(xcb_window_t window) const {
        const Reply<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(_connection, xcb_get_geometry(_connection, window), nullptr));
        return geometry != nullptr ? std::pair(geometry->width, geometry->height)
                                   : std::pair<std::uint16_t, std::uint16_t>{};
    }
    /// Where on the screen its top left corner is.
    std::pair<int, int> placeOf(xcb_window_t window) const {
        const Reply<xcb_translate_coordinates_reply_t> corner(xcb_translate_coordinates_reply(
            _connection, xcb_translate_coordinates(_connection, window, _root, 0, 0), nullptr));
        return corner != nullptr ? std::pair<int, int>(corner->dst_x, corner->dst_y) : std::pair<int, int>();
    }
    /// Whether events of these kinds are still to be had.
    bool canSelect(xcb_window_t window, std::uint32_t events) const {
        const Reply<xcb_generic_error_t> error(xcb_request_check(
            _connection, xcb_change_window_attributes_checked(_connection, window, XCB_CW_EVENT_MASK, &events)));
        return error == nullptr;
    }
    void settle() const {
        Reply<xcb_get_input_focus_reply_t>(
            xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
    }

    void place(xcb_window_t window, std::int32_t x, std::int32_t y) const {
        const std::uint32_t corner[] = {static_cast<std::uint32_t>(x), static_cast<std::uint32_t>(y)};
        xcb_configure_window(_connection, window, XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y, corner);
        settle();
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

    /// Made where there is none of that name yet.
    xcb_atom_t atom(const std::string& name) const {
        const Reply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            _connection, xcb_intern_atom(_connection, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
            nullptr));
        return reply->atom;
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
    void fakeInput(std::uint8_t type, std::uint8_t detail, std::int16_t x = 0, std::int16_t y = 0) const {
        xcb_test_fake_input(_connection, type, detail, XCB_CURRENT_TIME, _root, x, y, 0);
        settle();
    }

    xcb_visualid_t visualOf(std::uint8_t depth) const {
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(_connection)).data;
        for (auto depths = xcb_screen_allowed_depths_iterator(screen); depths.rem != 0; xcb_depth_next(&depths)) {
            if (depths.data->depth == depth && depths.data->visuals_len > 0) {
                return xcb_depth_visuals(depths.data)->visual_id;
            }
        }
        ADD_FAILURE() << "this display has no windows of depth " << int{depth};
        return XCB_COPY_FROM_PARENT;
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

}  // namespace fake

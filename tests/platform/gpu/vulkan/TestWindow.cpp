#include "TestWindow.hpp"

#include <chrono>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

namespace {

template <typename Reply>
using ReplyPointer = std::unique_ptr<Reply, decltype(&std::free)>;

template <typename Reply>
ReplyPointer<Reply> owned(Reply* reply) {
    return {reply, &std::free};
}

/// A server that has just lost its last client refuses new ones for a moment, while it resets itself.
xcb_connection_t* connect() {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    for (;;) {
        xcb_connection_t* const connection = xcb_connect(nullptr, nullptr);
        if (xcb_connection_has_error(connection) == 0 || std::chrono::steady_clock::now() > deadline) {
            return connection;
        }
        xcb_disconnect(connection);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
}

}  // namespace

TestServer::TestServer() : _connection(connect()) {
    if (xcb_connection_has_error(_connection) != 0) {
        xcb_disconnect(_connection);
        throw std::runtime_error("No X server. Set DISPLAY, or run this by way of ./test, which starts one.");
    }
    _screen = xcb_setup_roots_iterator(xcb_get_setup(_connection)).data;
}

TestServer::~TestServer() {
    xcb_disconnect(_connection);
}

void TestServer::settle() {
    owned(xcb_get_input_focus_reply(_connection, xcb_get_input_focus(_connection), nullptr));
}

std::string TestServer::errors() {
    settle();
    std::string text;
    while (const auto event = owned(xcb_poll_for_event(_connection))) {
        if (event->response_type == 0) {
            const auto& error = reinterpret_cast<const xcb_generic_error_t&>(*event);
            text += "X error " + std::to_string(error.error_code) + " of request " + std::to_string(error.major_code) +
                    "." + std::to_string(error.minor_code) + "\n";
        }
    }
    return text;
}

void TestServer::grab() {
    xcb_grab_server(_connection);
    settle();
}

void TestServer::ungrab() {
    xcb_ungrab_server(_connection);
    settle();
}

TestWindow::TestWindow(TestServer& owner, TestServer& client, gpu::Extent size)
    : _owner(owner), _client(client), _window(xcb_generate_id(owner.connection())), _size(size) {
    xcb_create_window(owner.connection(), XCB_COPY_FROM_PARENT, _window, owner.screen().root, 0, 0,
                      static_cast<std::uint16_t>(size.width), static_cast<std::uint16_t>(size.height), 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
    owner.settle();
}

TestWindow::~TestWindow() {
    destroy();
}

gpu::PresentationTarget TestWindow::target() {
    return {.window = gpu::XcbWindow{.connection = _client.connection(), .window = _window},
            .willPresentFirstFrame = [connection = _client.connection(), window = _window] {
                xcb_map_window(connection, window);
            }};
}

void TestWindow::map() {
    xcb_map_window(_owner.connection(), _window);
    _owner.settle();
}

void TestWindow::unmap() {
    xcb_unmap_window(_owner.connection(), _window);
    _owner.settle();
}

void TestWindow::resize(gpu::Extent size) {
    const std::uint32_t values[] = {static_cast<std::uint32_t>(size.width), static_cast<std::uint32_t>(size.height)};
    xcb_configure_window(_owner.connection(), _window, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, values);
    _owner.settle();
    _size = size;
}

void TestWindow::destroy() {
    if (_exists) {
        xcb_destroy_window(_owner.connection(), _window);
        _owner.settle();
        _exists = false;
    }
}

std::optional<std::uint32_t> TestWindow::pixel(gpu::Origin point) const {
    xcb_connection_t* connection = _owner.connection();
    const auto attributes =
        owned(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, _window), nullptr));
    if (attributes == nullptr || attributes->map_state != XCB_MAP_STATE_VIEWABLE) {
        return std::nullopt;
    }
    const auto image = owned(xcb_get_image_reply(
        connection,
        xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, _window, static_cast<std::int16_t>(point.x),
                      static_cast<std::int16_t>(point.y), 1, 1, 0xFFFFFFFF),
        nullptr));
    if (image == nullptr || xcb_get_image_data_length(image.get()) < 4) {
        return std::nullopt;
    }
    const std::uint8_t* bytes = xcb_get_image_data(image.get());
    return static_cast<std::uint32_t>(bytes[2] << 16 | bytes[1] << 8 | bytes[0]);
}

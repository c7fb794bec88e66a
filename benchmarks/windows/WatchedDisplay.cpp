#include "benchmarks/windows/WatchedDisplay.hpp"

#include <poll.h>

#include <algorithm>
#include <cstdlib>
#include <span>
#include <stdexcept>
#include <thread>
#include <utility>

namespace bench {
namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

}  // namespace

WatchedDisplay::WatchedDisplay(std::uint16_t width, std::uint16_t height)
    : _connection(xcb_connect(nullptr, nullptr)), _width(width), _height(height) {
    xcb_connection_t* const connection = _connection.get();
    if (xcb_connection_has_error(connection) != 0) {
        throw std::runtime_error("no X display");
    }
    const xcb_query_extension_reply_t* const extension = xcb_get_extension_data(connection, &xcb_damage_id);
    if (extension == nullptr || extension->present == 0) {
        throw std::runtime_error("the X display has no Damage extension");
    }
    _damageEvent = extension->first_event + XCB_DAMAGE_NOTIFY;
    _root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    const Owned<xcb_damage_query_version_reply_t> version(
        xcb_damage_query_version_reply(connection, xcb_damage_query_version(connection, 1, 1), nullptr));
    xcb_damage_create(connection, xcb_generate_id(connection), _root, XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    xcb_flush(connection);
}

double WatchedDisplay::takeFrames() {
    drain();
    return std::exchange(_damagedPixels, 0.0) / (static_cast<double>(_width) * _height);
}

void WatchedDisplay::drain() {
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(_connection.get())}) {
        if ((event->response_type & 0x7F) == _damageEvent) {
            const auto& damage = reinterpret_cast<const xcb_damage_notify_event_t&>(*event);
            _damagedPixels += static_cast<double>(damage.area.width) * damage.area.height;
        }
    }
}

std::optional<WatchedDisplay::Time> WatchedDisplay::waitForPicture(int brightness, Time deadline) {
    drain();
    while (steady_clock::now() < deadline) {
        const Time now = steady_clock::now();
        const double before = _damagedPixels;
        drain();
        if (_damagedPixels == before) {  // the replies to the questions below may have brought events along
            pollfd drawn{xcb_get_file_descriptor(_connection.get()), POLLIN, 0};
            poll(&drawn, 1, 10);
        } else if (showsPicture(brightness)) {
            return now;
        }
    }
    return {};
}

bool WatchedDisplay::waitForEnd(Time deadline) {
    while (findWindow()) {
        if (steady_clock::now() > deadline) {
            return false;
        }
        std::this_thread::sleep_for(milliseconds(5));
    }
    return true;
}

std::optional<WatchedDisplay::Position> WatchedDisplay::findWindow() const {
    xcb_connection_t* const connection = _connection.get();
    const Owned<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, _root), nullptr));
    if (tree == nullptr) {
        return {};
    }
    const auto count = static_cast<std::size_t>(xcb_query_tree_children_length(tree.get()));
    for (const xcb_window_t window : std::span(xcb_query_tree_children(tree.get()), count)) {
        const Owned<xcb_get_geometry_reply_t> geometry(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
        if (geometry != nullptr && geometry->width == _width && geometry->height == _height) {
            return Position{geometry->x, geometry->y};
        }
    }
    return {};
}

bool WatchedDisplay::showsPicture(int brightness) const {
    const auto window = findWindow();
    if (!window) {
        return false;
    }
    const auto middle = static_cast<std::int16_t>(window->y + _height / 2);
    const Owned<xcb_get_image_reply_t> image(xcb_get_image_reply(
        _connection.get(),
        xcb_get_image(_connection.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, _root, window->x, middle, _width, 1, 0x00FFFFFF),
        nullptr));
    if (image == nullptr) {
        return false;
    }
    const std::span bytes(xcb_get_image_data(image.get()),
                          static_cast<std::size_t>(xcb_get_image_data_length(image.get())));
    return std::ranges::any_of(bytes, [brightness](std::uint8_t byte) { return byte > brightness; });
}

}  // namespace bench

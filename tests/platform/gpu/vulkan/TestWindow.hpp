#pragma once

#include "platform/gpu/Layer.hpp"

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <string>

/// A connection to the X server of the test's environment. Throws where `DISPLAY` names none: the project's test
/// script starts one.
class TestServer {
public:
    TestServer();
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;
    ~TestServer();

    xcb_connection_t* connection() const { return _connection; }
    const xcb_screen_t& screen() const { return *_screen; }

    /// Waits until the server has carried out all requests.
    void settle();

    /// X errors that came in unasked, as text; empty for none.
    std::string errors();

    /// While grabbed, the server serves no other connection.
    void grab();
    void ungrab();

private:
    xcb_connection_t* _connection;
    const xcb_screen_t* _screen;
};

/// A window without a background, unmapped at first. It belongs to `owner`, and `client` is who shows frames in it, as
/// when a program draws in another's window; both may be the same.
class TestWindow {
public:
    TestWindow(TestServer& owner, TestServer& client, gpu::Extent size);
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;
    ~TestWindow();

    /// Maps the window just before the first frame.
    gpu::PresentationTarget target();
    void map();
    void unmap();
    void resize(gpu::Extent size);
    void destroy();

    /// The colour 0xRRGGBB at a point, or nothing where the window is not to be seen.
    std::optional<std::uint32_t> pixel(gpu::Origin point) const;
    gpu::Extent size() const { return _size; }

private:
    TestServer& _owner;
    TestServer& _client;
    xcb_window_t _window;
    gpu::Extent _size;
    bool _exists = true;
};

#include "platform/ui/WaylandConnection.hpp"

#include "platform/SystemLog.hpp"
#include "platform/ui/ApplicationDisplay.hpp"

#include <viewporter-client-protocol.h>
#include <wayland-client.h>

#include <QtCore/QCoreApplication>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>

namespace platform {
namespace {

struct Global {
    const wl_interface* interface;
    std::uint32_t version;
    void** place;
};

using WantedGlobals = std::array<Global, 3>;

void bindIfWanted(void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t version) {
    for (const Global& wanted : *static_cast<const WantedGlobals*>(data)) {
        if (*wanted.place == nullptr && std::strcmp(interface, wanted.interface->name) == 0) {
            *wanted.place = wl_registry_bind(registry, name, wanted.interface, std::min(version, wanted.version));
            wl_proxy_set_queue(static_cast<wl_proxy*>(*wanted.place), nullptr);  // the application's
        }
    }
}

void ignoreRemoval(void*, wl_registry*, std::uint32_t) {}

constexpr wl_registry_listener registryListener{.global = &bindIfWanted, .global_remove = &ignoreRemoval};

}  // namespace

const WaylandConnection* WaylandConnection::ofApplication() {
    static std::unique_ptr<WaylandConnection> connection;
    static wl_display* asked = nullptr;
    wl_display* const display = applicationWaylandDisplay();
    if (display == nullptr || display == asked) {
        return display != nullptr ? connection.get() : nullptr;
    }
    asked = display;
    connection.reset(new WaylandConnection(display));
    if (!connection->isComplete()) {
        systemLog("window: the Wayland compositor has no subsurfaces or no viewports; frames cannot be shown");
        connection.reset();
    }
    // Runs while the application still has its display.
    qAddPostRoutine([] {
        connection.reset();
        asked = nullptr;
    });
    return connection.get();
}

WaylandConnection::WaylandConnection(wl_display* display) : _display(display) {
    bindAll();
}

/// On a queue of its own, so that no event of the application is handled while this waits.
void WaylandConnection::bindAll() {
    WantedGlobals wanted{{{&wl_compositor_interface, 4, reinterpret_cast<void**>(&_compositor)},
                          {&wl_subcompositor_interface, 1, reinterpret_cast<void**>(&_subcompositor)},
                          {&wp_viewporter_interface, 1, reinterpret_cast<void**>(&_viewporter)}}};
    wl_event_queue* const queue = wl_display_create_queue(_display);
    auto* const wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(_display));
    wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue);
    wl_registry* const registry = wl_display_get_registry(wrapper);
    wl_proxy_wrapper_destroy(wrapper);
    wl_registry_add_listener(registry, &registryListener, &wanted);
    wl_display_roundtrip_queue(_display, queue);
    wl_registry_destroy(registry);
    wl_event_queue_destroy(queue);
}

bool WaylandConnection::isComplete() const {
    return _compositor != nullptr && _subcompositor != nullptr && _viewporter != nullptr;
}

WaylandConnection::~WaylandConnection() {
    if (_viewporter != nullptr) {
        wp_viewporter_destroy(_viewporter);
    }
    if (_subcompositor != nullptr) {
        wl_subcompositor_destroy(_subcompositor);
    }
    if (_compositor != nullptr) {
        wl_compositor_destroy(_compositor);
    }
}

}  // namespace platform

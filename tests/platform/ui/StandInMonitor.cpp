#include "StandInMonitor.hpp"

#include <dlfcn.h>
#include <xcb/dpms.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <atomic>
#include <set>

namespace {

struct Power {
    std::uint16_t level = XCB_DPMS_DPMS_MODE_ON;
    bool isManaged = true;
};
std::atomic<Power> power;
std::set<unsigned int> questions;  // main thread

template <typename Function>
Function* real(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

namespace fake::monitor {

void setPower(std::uint16_t level, bool isManaged) {
    power = Power{level, isManaged};
}

}  // namespace fake::monitor

extern "C" const xcb_query_extension_reply_t* xcb_get_extension_data(xcb_connection_t* connection,
                                                                     xcb_extension_t* extension) {
    static xcb_query_extension_reply_t present{};
    present.present = 1;
    return extension == &xcb_dpms_id
               ? &present
               : real<decltype(xcb_get_extension_data)>("xcb_get_extension_data")(connection, extension);
}

/// Goes to the server as another question, whose answer is as long.
extern "C" xcb_dpms_info_cookie_t xcb_dpms_info(xcb_connection_t* connection) {
    const unsigned int question = xcb_get_input_focus(connection).sequence;
    questions.insert(question);
    return {question};
}

extern "C" int xcb_poll_for_reply(xcb_connection_t* connection, unsigned int question, void** reply,
                                  xcb_generic_error_t** error) {
    const int isThere = real<decltype(xcb_poll_for_reply)>("xcb_poll_for_reply")(connection, question, reply, error);
    if (isThere != 0 && *reply != nullptr && questions.erase(question) != 0) {
        auto& answer = *static_cast<xcb_dpms_info_reply_t*>(*reply);
        answer.power_level = power.load().level;
        answer.state = power.load().isManaged ? 1 : 0;
    }
    return isThere;
}

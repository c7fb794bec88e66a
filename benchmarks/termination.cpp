// How long the program takes from SIGTERM to its end, in a window of 1280 x 720 that shows moving clouds.
// Screen saver hosts wait for that end, some of them with their own window frozen. Needs an X display without other
// windows. Usage: termination_benchmark PROGRAM [RUNS]

#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds goal{100};

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};

/// True once something brighter than black stands in the middle of the first mapped window of that size.
bool showsPicture(xcb_connection_t* connection, xcb_window_t root) {
    const std::unique_ptr<xcb_query_tree_reply_t, Free> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, root), nullptr));
    for (int i = 0; tree != nullptr && i < xcb_query_tree_children_length(tree.get()); ++i) {
        const xcb_window_t window = xcb_query_tree_children(tree.get())[i];
        const std::unique_ptr<xcb_get_geometry_reply_t, Free> geometry(
            xcb_get_geometry_reply(connection, xcb_get_geometry(connection, window), nullptr));
        if (geometry == nullptr || geometry->width != 1280 || geometry->height != 720) {
            continue;
        }
        const std::unique_ptr<xcb_get_image_reply_t, Free> image(xcb_get_image_reply(
            connection,
            xcb_get_image(connection, XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(geometry->x + 640),
                          static_cast<std::int16_t>(geometry->y + 360), 1, 1, ~0U),
            nullptr));
        if (image != nullptr && xcb_get_image_data(image.get())[1] > 20) {
            return true;
        }
    }
    return false;
}

/// Milliseconds from the signal to the end of the process; nothing when it did not behave.
std::optional<double> measureOnce(char* program, char** environment) {
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(connection) != 0) {
        return {};
    }
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    pid_t process = 0;
    char* arguments[] = {program, nullptr};
    if (posix_spawn(&process, program, nullptr, nullptr, arguments, environment) != 0) {
        return {};
    }
    const auto deadline = steady_clock::now() + std::chrono::seconds(30);
    while (!showsPicture(connection, root) && steady_clock::now() < deadline) {
        std::this_thread::sleep_for(milliseconds(20));
    }
    xcb_disconnect(connection);

    const auto start = steady_clock::now();
    kill(process, SIGTERM);
    int status = 0;
    waitpid(process, &status, 0);
    const double taken = std::chrono::duration<double, std::milli>(steady_clock::now() - start).count();
    const bool endedBySignal = WIFSIGNALED(status) && WTERMSIG(status) == SIGTERM;
    return endedBySignal && start < deadline ? std::optional(taken) : std::nullopt;
}

}  // namespace

int main(int argumentCount, char** arguments, char** environment) {
    if (argumentCount < 2) {
        std::fprintf(stderr, "usage: termination_benchmark PROGRAM [RUNS]\n");
        return 2;
    }
    const int runs = argumentCount > 2 ? std::atoi(arguments[2]) : 50;
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        const auto taken = measureOnce(arguments[1], environment);
        if (!taken) {
            std::fprintf(stderr, "run %d did not show clouds and end by SIGTERM\n", i + 1);
            return 1;
        }
        times.push_back(*taken);
    }
    if (times.empty()) {
        return 2;
    }
    std::sort(times.begin(), times.end());
    std::printf(
        "SIGTERM to end, window 1280x720, %zu runs: median %.1f ms, worst %.1f ms (goal: median at most %lld ms)\n",
        times.size(), times[times.size() / 2], times.back(), static_cast<long long>(goal.count()));
    return 0;
}

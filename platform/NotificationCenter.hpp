#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// Delivers named notifications, synchronously on the posting thread and with no lock held, to a snapshot of the
/// observers. An observer is held by a weak token, best its owner's last-declared member, and skipped once that has
/// gone. Thread-safe.
class NotificationCenter {
public:
    using Callback = std::function<void(std::string_view name)>;

    /// The process's own, never destroyed.
    static NotificationCenter& defaultCenter();

    void addObserver(std::string name, std::weak_ptr<const void> token, Callback callback);
    void post(std::string_view name);

private:
    struct Observer {
        std::string name;
        std::weak_ptr<const void> token;
        Callback callback;
    };

    std::mutex _mutex;
    std::vector<Observer> _observers;
};

}  // namespace platform

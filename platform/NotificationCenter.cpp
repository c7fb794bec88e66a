#include "platform/NotificationCenter.hpp"

#include <algorithm>
#include <iterator>
#include <utility>

namespace platform {

NotificationCenter& NotificationCenter::defaultCenter() {
    static auto* const center = new NotificationCenter;  // leaked on purpose: observers may go at any time
    return *center;
}

void NotificationCenter::addObserver(std::string name, std::weak_ptr<const void> token, Callback callback) {
    const std::lock_guard lock(_mutex);
    _observers.push_back({std::move(name), std::move(token), std::move(callback)});
}

void NotificationCenter::post(std::string_view name) {
    std::vector<Observer> gone;  // outlives the lock: what the callbacks captured may do anything when it is destroyed
    std::vector<Observer> snapshot;
    {
        const std::lock_guard lock(_mutex);
        const auto firstGone = std::stable_partition(
            _observers.begin(), _observers.end(), [](const Observer& observer) { return !observer.token.expired(); });
        gone.assign(std::make_move_iterator(firstGone), std::make_move_iterator(_observers.end()));
        _observers.erase(firstGone, _observers.end());
        snapshot = _observers;
    }
    for (const Observer& observer : snapshot) {
        // Asked one by one: an observer may go while an earlier one is being told.
        if (observer.name == name && !observer.token.expired()) {
            observer.callback(name);
        }
    }
}

}  // namespace platform

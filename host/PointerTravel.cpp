#include "host/PointerTravel.hpp"

#include <algorithm>
#include <cmath>

namespace host {

bool PointerTravel::movedTo(double x, double y, std::chrono::milliseconds now) {
    // Where it was when the window began is the last place before that.
    while (_places.size() > 1 && _places[1].time <= now - window) {
        _places.pop_front();
    }
    const bool isFar = std::ranges::any_of(
        _places, [&](const Place& place) { return std::hypot(x - place.x, y - place.y) > distance; });
    _places.push_back({x, y, now});
    return isFar;
}

}  // namespace host

#pragma once

#include <cstddef>
#include <memory>

/// Fills the array with what `make` returns for each index, element 0 upward, up to and with the first null.
/// True when none was null, so also for a count of 0.
template <typename Object, typename Make>
bool QZLFillObjectArray(std::shared_ptr<Object>* array, std::size_t count, Make make) {
    for (std::size_t index = 0; index < count; ++index) {
        array[index] = make(index);
        if (array[index] == nullptr) {
            return false;
        }
    }
    return true;
}

template <typename Object>
void QZLReleaseObjectArray(std::shared_ptr<Object>* array, std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
        array[index].reset();
    }
}

#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <semaphore>

using QZLSemaphore = std::counting_semaphore<>;

/// A semaphore made with count 0 and raised by `count` signals; none when the count is 0 or less.
std::shared_ptr<QZLSemaphore> QZLDispatchSemaphoreCreate(std::int32_t count);

/// Fills the array, element 0 upward, with semaphores of that count.
void QZLDispatchSemaphoreCreateMultiple(std::int32_t count, std::shared_ptr<QZLSemaphore>* array,
                                        std::size_t numberOfSemaphores);

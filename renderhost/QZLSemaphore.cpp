#include "renderhost/QZLSemaphore.hpp"

std::shared_ptr<QZLSemaphore> QZLDispatchSemaphoreCreate(std::int32_t count) {
    auto semaphore = std::make_shared<QZLSemaphore>(0);
    for (std::int32_t signalled = 0; signalled < count; ++signalled) {
        semaphore->release();
    }
    return semaphore;
}

void QZLDispatchSemaphoreCreateMultiple(std::int32_t count, std::shared_ptr<QZLSemaphore>* array,
                                        std::size_t numberOfSemaphores) {
    for (std::size_t index = 0; index < numberOfSemaphores; ++index) {
        array[index] = QZLDispatchSemaphoreCreate(count);
    }
}

#include "platform/Random.hpp"

#include <atomic>
#include <cstdlib>

namespace platform {
namespace {

std::atomic<RandomGenerator*> generatorInForce{nullptr};

}  // namespace

void seedRandom(std::uint32_t seed) {
    if (RandomGenerator* generator = generatorInForce) {
        generator->seed(seed);
    } else {
        ::srandom(seed);
    }
}

std::int64_t random() {
    RandomGenerator* generator = generatorInForce;
    return generator != nullptr ? generator->next() : ::random();
}

void setRandomGenerator(RandomGenerator* generator) {
    generatorInForce = generator;
}

}  // namespace platform

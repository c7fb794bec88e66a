#pragma once

#include <cstdint>

namespace platform {

/// A generator with the C library's contract: `next` gives 0 to 2147483647.
class RandomGenerator {
public:
    virtual ~RandomGenerator() = default;
    virtual void seed(std::uint32_t seed) = 0;
    virtual std::int64_t next() = 0;
};

/// The process's generator in force: the C library's own `srandom` and `random`, unless a test has put another in
/// place.
void seedRandom(std::uint32_t seed);
std::int64_t random();

/// Puts another generator in force, which must outlive its use; null restores the C library's.
void setRandomGenerator(RandomGenerator* generator);

}  // namespace platform

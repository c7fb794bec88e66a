#pragma once

#include <cstddef>
#include <new>
#include <type_traits>
#include <utility>

namespace platform {

template <typename Signature, std::size_t Capacity>
class InplaceFunction;

/// A move-only callable that lives wholly inside itself, so that storing one on the frame path never allocates.
/// A callable larger than `Capacity` bytes does not compile. Not thread-safe; calling an empty one is undefined.
template <typename Result, typename... Arguments, std::size_t Capacity>
class InplaceFunction<Result(Arguments...), Capacity> {
public:
    InplaceFunction() = default;

    template <typename Callable>
    requires(!std::is_same_v<std::decay_t<Callable>, InplaceFunction>)
        InplaceFunction(Callable&& callable) {  // NOLINT: converts like std::function, and never hides a move
        using Stored = std::decay_t<Callable>;
        static_assert(sizeof(Stored) <= Capacity, "the callable captures more than fits in place");
        static_assert(alignof(Stored) <= alignof(std::max_align_t));
        static_assert(std::is_nothrow_move_constructible_v<Stored>);
        ::new (static_cast<void*>(_storage)) Stored(std::forward<Callable>(callable));
        _call = [](void* stored, Arguments... arguments) -> Result {
            return (*static_cast<Stored*>(stored))(std::forward<Arguments>(arguments)...);
        };
        _relocate = [](void* from, void* to) noexcept {
            auto* stored = static_cast<Stored*>(from);
            if (to != nullptr) {
                ::new (to) Stored(std::move(*stored));
            }
            stored->~Stored();
        };
    }

    InplaceFunction(InplaceFunction&& other) noexcept { takeFrom(other); }
    InplaceFunction& operator=(InplaceFunction&& other) noexcept {
        if (this != &other) {
            reset();
            takeFrom(other);
        }
        return *this;
    }
    InplaceFunction(const InplaceFunction&) = delete;
    InplaceFunction& operator=(const InplaceFunction&) = delete;
    ~InplaceFunction() { reset(); }

    explicit operator bool() const { return _call != nullptr; }

    Result operator()(Arguments... arguments) { return _call(_storage, std::forward<Arguments>(arguments)...); }

private:
    void reset() noexcept {
        if (_relocate != nullptr) {
            _relocate(_storage, nullptr);
        }
        _call = nullptr;
        _relocate = nullptr;
    }

    void takeFrom(InplaceFunction& other) noexcept {
        if (other._relocate != nullptr) {
            other._relocate(other._storage, _storage);
        }
        _call = std::exchange(other._call, nullptr);
        _relocate = std::exchange(other._relocate, nullptr);
    }

    alignas(std::max_align_t) std::byte _storage[Capacity];
    Result (*_call)(void*, Arguments...) = nullptr;
    void (*_relocate)(void*, void*) noexcept = nullptr;  // moves to the second place, or only destroys when it is null
};

}  // namespace platform

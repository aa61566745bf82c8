#pragma once

#include <cstddef>
#include <new>
#include <utility>

/// An object that lives to process end: never destroyed, so that threads and hosts that call in while static
/// objects are being destroyed still find it. For static variables within functions:
///
///     static NoDestructor<Queue> shared;
///     return *shared;
///
/// A class with a private constructor has NoDestructor<T> as a friend.
template <class T>
class NoDestructor {
public:
    template <class... Arguments>
    explicit NoDestructor(Arguments&&... arguments) {
        new (mStorage) T(std::forward<Arguments>(arguments)...);
    }
    NoDestructor(const NoDestructor&) = delete;
    NoDestructor& operator=(const NoDestructor&) = delete;

    T& operator*() { return *std::launder(reinterpret_cast<T*>(mStorage)); }

private:
    alignas(T) std::byte mStorage[sizeof(T)];
};

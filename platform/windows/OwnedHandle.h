// A handle of the system's that closes itself.
#pragma once

#include <windows.h>

#include <utility>

namespace platform {

/// Takes both of the values that calls fail with, null and INVALID_HANDLE_VALUE, for none.
class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(HANDLE handle) : mHandle(handle != INVALID_HANDLE_VALUE ? handle : nullptr) {}
    OwnedHandle(OwnedHandle&& other) noexcept : mHandle(std::exchange(other.mHandle, nullptr)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        std::swap(mHandle, other.mHandle);
        return *this;
    }
    ~OwnedHandle() {
        if (mHandle != nullptr)
            CloseHandle(mHandle);
    }

    HANDLE Get() const { return mHandle; }
    bool IsValid() const { return mHandle != nullptr; }
    /// The handle, for whoever closes it from now on.
    HANDLE Release() { return std::exchange(mHandle, nullptr); }

private:
    HANDLE mHandle = nullptr;
};

}  // namespace platform

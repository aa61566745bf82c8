// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace platform {

class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int descriptor) : mDescriptor(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : mDescriptor(std::exchange(other.mDescriptor, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(mDescriptor, other.mDescriptor);
        return *this;
    }
    ~Descriptor() {
        if (mDescriptor >= 0)
            close(mDescriptor);
    }

    int Get() const { return mDescriptor; }
    bool IsValid() const { return mDescriptor >= 0; }
    /// The descriptor, for whoever closes it from now on.
    int Release() { return std::exchange(mDescriptor, -1); }

private:
    int mDescriptor = -1;
};

}  // namespace platform

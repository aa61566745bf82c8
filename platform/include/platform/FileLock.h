#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/SystemError.h"

namespace platform {

/// A lock between processes, held on a file that is made when missing, for this user only. Let go on
/// destruction and when the process ends.
class FileLock {
public:
    FileLock();
    ~FileLock();
    FileLock(FileLock&&) noexcept;
    FileLock& operator=(FileLock&&) noexcept;

    /// Waits for the lock; `wait` false answers at once with an error when someone holds it.
    SystemError Acquire(const std::string& path, bool wait);
    bool IsHeld() const;
    void Release();

    /// Whether the file that is locked still stands at its path, so that nobody else can hold the lock; true
    /// also where that cannot be told.
    bool IsInPlace() const;
    /// Replaces what stands in the file, which everybody may read who finds the lock held.
    SystemError Write(std::string_view content);
    /// Whether any process, this one included, holds the lock. Makes no file.
    static bool IsHeldByAnyone(const std::string& path);

private:
    struct Handle;
    std::unique_ptr<Handle> mHandle;
};

}  // namespace platform

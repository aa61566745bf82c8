// Files that are written piece by piece and get their names when they are complete.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/SystemError.h"

namespace platform {

/// A new file for this user only. Windows: the font cache and Store programs, which open the fonts that they show
/// themselves, may read it too. It is removed again unless it is moved to its place. One thread at a time.
class FileWriter {
public:
    FileWriter();
    ~FileWriter();
    FileWriter(FileWriter&&) noexcept;
    FileWriter& operator=(FileWriter&&) noexcept;

    /// Makes the file in that folder, under a name that nobody can foresee.
    SystemError Open(const std::string& folder);
    SystemError Write(std::string_view bytes);
    /// Has the system keep what was written; nothing more can be written.
    SystemError Finish();
    /// Where the file is now; empty when there is none, or it was moved.
    const std::string& Path() const { return mPath; }
    /// Gives a finished file its place, in the same file system, where nobody is to write to it any more. A
    /// reader, or a system that stops half-way, finds what stood there before or this one. Where the error
    /// is that of the folder's flush the file is in its place, but the system may yet lose it.
    SystemError MoveTo(const std::string& path);

private:
    struct Handle;
    std::unique_ptr<Handle> mHandle;
    std::string mPath;
};

}  // namespace platform

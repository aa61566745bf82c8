// Files that decide what programs do, and whether they may be obeyed.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "platform/SystemError.h"

namespace platform {

/// What a file is looked at for.
enum class FileUse {
    kContent,  ///< to be read; others may make files beside it
    kProgram   ///< to be run or loaded: what others put beside it would be loaded as well
};

/// A file held as it was judged, so that what is read or run afterwards is what was looked at. Windows: as long as this
/// lives, nobody can rename or remove the folder that it stands in, nor the file itself where it is a program. One thread.
class JudgedFile {
public:
    JudgedFile();
    ~JudgedFile();
    JudgedFile(const JudgedFile&) = delete;
    JudgedFile& operator=(const JudgedFile&) = delete;

    /// Opens the regular file. `fault`: why somebody else than this user and the administrators might have put there
    /// what stands at `path`, for people: "FOLDER belongs to somebody else", "FILE can be written to by others", "FILE cannot
    /// be looked at" (always with an error). Empty where they could not. An elevated process (Processes::IsElevated)
    /// does not trust its user either, whose programs are not. Linux: the folders above count as well, and links are
    /// followed, once; in a folder like /tmp, where all may make files and nobody takes away another's, what the user or
    /// root owns is theirs. Windows: of those above the folder alone that it stands in; neither may be a link.
    SystemError Open(const std::string& path, FileUse use, std::string& fault);
    /// The whole of what was opened as kContent. A file of more than `sizeLimit` bytes is refused.
    SystemError Read(std::string& content, uint64_t sizeLimit);
    /// The path by which to start what was opened as kProgram: without links (Linux).
    const std::string& Path() const { return mPath; }

private:
    struct Handle;
    std::unique_ptr<Handle> mHandle;
    std::string mPath;
};

}  // namespace platform

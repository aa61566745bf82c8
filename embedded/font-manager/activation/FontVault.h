// The folder in which the agent keeps its copies of font files, named by their checksums.
#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "platform/FileWriter.h"
#include "platform/Files.h"
#include "platform/SystemError.h"
#include "store/FontStore.h"

namespace pellwick {

/// Set by another thread to cancel a long operation.
using StopFlag = std::atomic<bool>;

/// Below a folder: FOLDER/ab/abcd...ef.ttf, so that no single folder gets large.
std::string ShardedPath(const std::string& folder, const FontFile& file);

/// The files below a folder that stand under names such as ShardedPath gives, or under the temporary names of
/// such files: no others have been made there. None where the folder is a symbolic link: what stands where
/// the user pointed is the user's.
std::vector<std::string> ShardedFiles(const std::string& folder);

/// A copy on its way into the vault. It is deleted unless it gets there.
struct ReceivedFile {
    platform::FileWriter copy;
    std::string checksum;  ///< SHA-256 (FIPS 180-4) as 64 lower-case hexadecimal digits
    uint64_t size = 0;     ///< bytes
};

/// Any thread; one at a time for the same file.
class FontVault {
public:
    /// `session`: that of Locations; agents of other sessions receive files at the same time.
    explicit FontVault(std::string folder, uint32_t session = 0);

    const std::string& Folder() const { return mFolder; }
    /// Where the file is kept: here, or where the system has it.
    std::string PathOf(const FontFile& file) const {
        return file.IsSystems() ? file.path : ShardedPath(mFolder, file);
    }
    /// Whether the file is there, with the size it should have.
    bool Has(const FontFile& file) const;
    /// Whether its content is also what its checksum says. Reads all of it.
    bool IsIntact(const FontFile& file, const StopFlag& isStopped) const;

    enum class Outcome { kReceived, kUnreadable, kUnwritable, kTooLarge, kStopped };
    /// Copies a file of up to kMaxFontFileSize, so that the system does not lose it. `error`: why the one
    /// cannot be read or the other written.
    Outcome Receive(platform::ReadOnlyFile& source, const StopFlag& isStopped, ReceivedFile& received,
                    platform::SystemError& error) const;
    /// Moves the copy to its place, under its checksum, atomically.
    platform::SystemError Place(ReceivedFile& received, const FontFile& file) const;
    /// Gives a file the place of another one of the same content; false when that cannot be done.
    bool Rename(const FontFile& file, const FontFile& target) const;
    /// Removes the file; a missing one is not an error.
    platform::SystemError Remove(const FontFile& file) const;

    /// The checksum by which a file of the vault is called.
    static std::string ChecksumOfName(const std::string& path);
    /// That of its content; empty when it cannot be read or reading it was stopped.
    static std::string ChecksumOfContent(const std::string& path, const StopFlag& isStopped);
    /// Moves a damaged file of the vault to a folder where people can find it but nothing uses it. Returns
    /// its new path; empty when it could not be moved.
    std::string SetAside(const std::string& path) const;

    struct Survey {
        std::vector<std::string> unknown;  ///< paths of files that are none of the known
        std::vector<FontFile> missing;     ///< known files that are not there with their size
        int removed = 0;                   ///< files that interrupted commands had left
    };
    /// Lists what is there, and removes incomplete copies. Call it while nothing is being received.
    Survey LookAround(const std::vector<FontFile>& known) const;

private:
    const std::string mFolder;
    const std::string mIncoming;  ///< where incomplete copies are kept
};

}  // namespace pellwick

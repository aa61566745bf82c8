// The folder in which the agent keeps its copies of font files, named by their checksums.
#pragma once

#include <string>
#include <vector>

#include "platform/SystemError.h"
#include "store/FontStore.h"

namespace pellwick {

/// SHA-256 (FIPS 180-4) as 64 lower-case hexadecimal digits.
std::string Sha256(const std::string& content);

/// Below a folder: FOLDER/ab/abcd...ef.ttf, so that no single folder gets large.
std::string ShardedPath(const std::string& folder, const FontFile& file);

/// The files below a folder that stand under names such as ShardedPath gives, or under the temporary names of
/// such files: no others have been made there. None where the folder is a symbolic link: what stands where
/// the user pointed is the user's.
std::vector<std::string> ShardedFiles(const std::string& folder);

class FontVault {
public:
    explicit FontVault(std::string folder) : mFolder(std::move(folder)) {}

    const std::string& Folder() const { return mFolder; }
    std::string PathOf(const FontFile& file) const { return ShardedPath(mFolder, file); }
    /// Whether the file is there, with the size it should have.
    bool Has(const FontFile& file) const;
    /// Keeps the content under the file's checksum. Whole or not at all.
    platform::SystemError Store(const FontFile& file, const std::string& content) const;
    /// Removes the file; not being there is fine.
    void Remove(const FontFile& file) const;

    /// Whether there is no font file in it.
    bool IsEmpty() const;
    /// Removes what an interrupted Store left, and whole files that are not among `known` unless these are to
    /// be kept. How many files were removed.
    int Sweep(const std::vector<FontFile>& known, bool keepUnknown) const;

private:
    std::string mFolder;
};

}  // namespace pellwick

// A folder of the test's own, with a name that is hard on careless code, gone with the object.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return mPath; }
    std::string operator/(std::string_view name) const;
    /// Writes a file in it and answers with its path. Folders on the way are made.
    std::string Write(std::string_view name, std::string_view content) const;

private:
    std::filesystem::path mPath;
};

/// Writes the file at the UTF-8 path. Folders on the way are made.
void WriteText(const std::string& path, std::string_view content);
/// What the file at the UTF-8 path holds; empty when there is none.
std::string ContentOf(const std::string& path);

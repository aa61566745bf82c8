// Files of this process alone, in memory where the system has such a folder.
#pragma once

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>

/// A path that no other process uses, whichever processes it sees.
inline std::string ScratchPath() {
    static const std::string path =
        (std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path().string()) +
        "/plugincore-fuzz-" + std::to_string(std::random_device{}());
    return path;
}

inline void WriteScratch(const std::string& path, std::string_view content) {
    std::ofstream(path, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
}

class ScratchFile {
public:
    ScratchFile(std::string_view extension, std::string_view content)
        : mPath(ScratchPath() + "." + std::string(extension)) {
        WriteScratch(mPath, content);
    }
    ~ScratchFile() { std::remove(mPath.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

/// Empty when it is made, gone with the object.
class ScratchFolder {
public:
    ScratchFolder() {
        std::filesystem::remove_all(ScratchPath());
        std::filesystem::create_directories(ScratchPath());
    }
    ~ScratchFolder() { std::filesystem::remove_all(ScratchPath()); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string operator/(std::string_view name) const { return ScratchPath() + "/" + std::string(name); }
};

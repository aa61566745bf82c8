// A file of this process alone, in memory where the system has such a folder.
#pragma once

#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

class ScratchFile {
public:
    ScratchFile(std::string_view extension, std::string_view content) : mPath(PathWith(extension)) {
        std::FILE* file = std::fopen(mPath.c_str(), "wb");
        std::fwrite(content.data(), 1, content.size(), file);
        std::fclose(file);
    }
    ~ScratchFile() { std::remove(mPath.c_str()); }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;

    const std::string& Path() const { return mPath; }

private:
    static std::string PathWith(std::string_view extension) {
        static const std::string stem =
            (std::filesystem::exists("/dev/shm") ? "/dev/shm"
                                                 : std::filesystem::temp_directory_path().string()) +
            "/plugincore-fuzz-" + std::to_string(getpid());
        return stem + "." + std::string(extension);
    }

    std::string mPath;
};

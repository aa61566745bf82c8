// What all targets have in common. Each defines TryInput and Seeds; Fuzz.cpp runs them.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

void TryInput(const std::string& input);
/// Inputs to begin with, which come in among the changed inputs, so that a target needs no folder of them.
std::vector<std::string> Seeds();

/// What has to hold for every input. Ends the process as a crash would, so that the fuzzer keeps the input, and
/// says what does not hold.
inline void Require(bool holds, const char* what) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

inline void WriteScratch(const std::string& path, std::string_view content) {
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream(path, std::ios::binary).write(content.data(), static_cast<std::streamsize>(content.size()));
}

/// A folder of this process alone, whichever processes it sees; in memory where the system has such a folder.
class ScratchFolder {
public:
    ScratchFolder() { std::filesystem::create_directories(mPath); }
    ~ScratchFolder() { std::filesystem::remove_all(mPath); }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string operator/(const std::string& name) const { return mPath + "/" + name; }
    std::string Write(const std::string& name, std::string_view content) const {
        WriteScratch(*this / name, content);
        return *this / name;
    }

private:
    const std::string mPath =
        (std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path().string()) +
        "/plugincore-fuzz-" + std::to_string(std::random_device{}());
};

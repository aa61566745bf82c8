#include "TemporaryFolder.h"

#include <fstream>
#include <random>

namespace {

std::filesystem::path FromUtf8(std::string_view text) {
    return std::u8string(text.begin(), text.end());
}

std::string ToUtf8(const std::filesystem::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

}  // namespace

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        mPath = std::filesystem::temp_directory_path() / ("plugincore-test-" + std::to_string(random()));
    } while (!std::filesystem::create_directory(mPath));
    std::filesystem::permissions(mPath, std::filesystem::perms::owner_all);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
}

std::string TemporaryFolder::operator/(std::string_view name) const {
    return ToUtf8(mPath / FromUtf8(name));
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view content) const {
    const std::filesystem::path path = mPath / FromUtf8(name);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return ToUtf8(path);
}

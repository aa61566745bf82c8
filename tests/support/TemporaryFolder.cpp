#include "TemporaryFolder.h"

#include <fstream>
#include <random>

#include "platform/Utf8Path.h"

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    do {
        mPath = std::filesystem::temp_directory_path() /
                platform::Utf8Path("plugincore ü 字 😀 " + std::to_string(random()));
    } while (!std::filesystem::create_directory(mPath));
    std::filesystem::permissions(mPath, std::filesystem::perms::owner_all);
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(mPath, error);
}

std::string TemporaryFolder::operator/(std::string_view name) const {
    return platform::Utf8Text((mPath / platform::Utf8Path(name)).make_preferred());
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view content) const {
    const std::filesystem::path path = (mPath / platform::Utf8Path(name)).make_preferred();
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    return platform::Utf8Text(path);
}

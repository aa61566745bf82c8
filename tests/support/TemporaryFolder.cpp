#include "TemporaryFolder.h"

#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>

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
    namespace fs = std::filesystem;
    std::error_code failure;
    fs::remove_all(mPath, failure);
    if (!failure)
        return;
    // Where files that nobody may write to cannot be removed either.
    for (fs::recursive_directory_iterator entry(mPath, failure), end; !failure && entry != end;
         entry.increment(failure)) {
        std::error_code ignored;
        fs::permissions(entry->path(), fs::perms::owner_write, fs::perm_options::add, ignored);
    }
    fs::remove_all(mPath, failure);
}

std::string TemporaryFolder::operator/(std::string_view name) const {
    return platform::Utf8Text((mPath / platform::Utf8Path(name)).make_preferred());
}

std::string TemporaryFolder::Write(std::string_view name, std::string_view content) const {
    std::string path = *this / name;
    WriteText(path, content);
    return path;
}

void WriteText(const std::string& path, std::string_view content) {
    std::filesystem::create_directories(platform::Utf8Path(path).parent_path());
    std::ofstream file(platform::Utf8Path(path), std::ios::binary);
    if (!(file << content).flush())
        throw std::runtime_error("cannot write " + path);
}

std::string ContentOf(const std::string& path) {
    std::ifstream file(platform::Utf8Path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

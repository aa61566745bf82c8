#include "collect/FileCopies.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "PrintableText.h"
#include "StringConversion.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace pellwick {
namespace {

constexpr size_t kMaxFileNameSize = 255;
/// What is longer is not an extension but a part of the name.
constexpr size_t kMaxExtensionSize = 16;

size_t ExtensionOf(const std::string& name) {
    const size_t dot = name.rfind('.');
    return dot == std::string::npos || dot == 0 || name.size() - dot > kMaxExtensionSize ? name.size() : dot;
}

/// Cut in front of the extension, with `suffix` there.
std::string Fitted(const std::string& name, const std::string& suffix) {
    const size_t dot = ExtensionOf(name);
    const std::string extension = suffix + name.substr(dot);
    return FirstBytes(name.substr(0, dot), kMaxFileNameSize - extension.size()) + extension;
}

/// Windows takes no file by these names, whatever stands behind the first dot.
bool IsDeviceName(const std::string& name) {
    constexpr std::string_view kDevices[] = {"con", "prn", "aux", "nul"};
    constexpr std::string_view kPorts[] = {"com", "lpt"};  // with a digit behind
    const std::string stem = AsciiLowerCase(name.substr(0, name.find('.')));
    const bool isPort =
        stem.size() == 4 && stem[3] >= '0' && stem[3] <= '9' &&
        std::find(std::begin(kPorts), std::end(kPorts), stem.substr(0, 3)) != std::end(kPorts);
    return isPort || std::find(std::begin(kDevices), std::end(kDevices), stem) != std::end(kDevices);
}

/// False also where one of them cannot be read.
bool HoldSameContent(const std::string& left, const std::string& right) {
    constexpr size_t kPieceSize = size_t{1} << 20;
    platform::ReadOnlyFile files[2];
    uint64_t sizes[2] = {};
    if (files[0].Open(left) || files[1].Open(right) || files[0].Size(sizes[0]) || files[1].Size(sizes[1]) ||
        sizes[0] != sizes[1])
        return false;
    std::vector<char> pieces[2] = {std::vector<char>(kPieceSize), std::vector<char>(kPieceSize)};
    for (uint64_t offset = 0; offset < sizes[0]; offset += kPieceSize) {
        size_t read[2] = {};
        for (int side : {0, 1}) {
            if (files[side].ReadAt(offset, pieces[side].data(), kPieceSize, read[side]))
                return false;
        }
        if (!std::equal(pieces[0].data(), pieces[0].data() + read[0], pieces[1].data(),
                        pieces[1].data() + read[1]))
            return false;
    }
    return true;
}

}  // namespace

std::string SafeFileName(const std::string& name) {
    constexpr std::string_view kSpecial = "<>:\"\\|?*";
    std::string safe = WithoutUnprintables(name.substr(name.rfind('/') + 1));
    std::replace_if(
        safe.begin(), safe.end(), [&](char byte) { return kSpecial.find(byte) != std::string_view::npos; },
        '_');
    safe.erase(safe.find_last_not_of(" .") + 1);
    safe.erase(0, safe.find_first_not_of(' '));
    if (safe.empty())
        return "font";
    if (safe.front() == '.')
        safe.front() = '_';
    return Fitted(IsDeviceName(safe) ? "_" + safe : safe, "");
}

std::string NumberedName(const std::string& name, int number) {
    return number == 1 ? name : Fitted(name, " " + std::to_string(number));
}

std::string PathInFolder(const std::string& folder, const std::string& name) {
    return platform::Utf8Text(platform::Utf8Path(folder) / platform::Utf8Path(name));
}

platform::SystemError CopyIntoFolder(const std::string& source, const std::string& folder,
                                     const std::string& name, std::string& copy) {
    for (int number = 1;; ++number) {
        copy = NumberedName(name, number);
        const std::string target = PathInFolder(folder, copy);
        const platform::SystemError error = platform::CopyToNewFile(source, target);
        if (!error.IsExisting() || HoldSameContent(source, target))
            return error.IsExisting() ? platform::SystemError() : error;
    }
}

}  // namespace pellwick

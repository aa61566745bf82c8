#include <windows.h>

#include <nlohmann/json.hpp>
#include <stdexcept>

#include "FontRecordKeys.h"
#include "platform/DynamicLibrary.h"
#include "platform/Folders.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

/// As the export directory of the loaded image has them (PE Format, ".edata").
std::set<std::string> ExportedNames() {
    platform::SystemError error;
    const auto* image =
        static_cast<const unsigned char*>(platform::Current<platform::DynamicLibraries>().LoadFromPath(
            platform::FullPath(TARNWICK_LIBRARY), error));
    if (image == nullptr)
        throw std::runtime_error(platform::SystemErrorText(error));
    const auto* begin = reinterpret_cast<const IMAGE_DOS_HEADER*>(image);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(image + begin->e_lfanew);
    const IMAGE_DATA_DIRECTORY& place = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* exports = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(image + place.VirtualAddress);
    const auto* offsets = reinterpret_cast<const DWORD*>(image + exports->AddressOfNames);
    std::set<std::string> names;
    for (DWORD index = 0; index < exports->NumberOfNames; ++index)
        names.insert(reinterpret_cast<const char*>(image + offsets[index]));
    return names;
}

std::vector<std::string> TestWorld::ActiveFiles() const {
    std::set<std::string> files;  // a file may have several fonts
    const Json visible = RunForJson({"list", "--visible", "--no-start"});
    for (const Json& font : ArrayMember(visible, "fonts"))
        files.insert(StringMember(font, kGS_PathKey));
    return {files.begin(), files.end()};
}

}  // namespace pellwick::test

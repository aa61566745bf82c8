#include <nlohmann/json.hpp>
#include <set>

#include "FontRecordKeys.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

std::vector<std::string> TestWorld::ActiveFiles() const {
    std::set<std::string> files;  // a file may have several fonts
    for (const Json& font : RunForJson({"list", "--visible", "--no-start"})["fonts"])
        files.insert(StringMember(font, kGS_PathKey));
    return {files.begin(), files.end()};
}

}  // namespace pellwick::test

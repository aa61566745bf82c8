#include <nlohmann/json.hpp>
#include <set>

#include "FontRecordKeys.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

std::vector<std::string> TestWorld::ActiveFiles() const {
    std::set<std::string> files;  // a file may have several fonts
    const Json visible = RunForJson({"list", "--visible", "--no-start"});
    for (const Json& font : ArrayMember(visible, "fonts"))
        files.insert(StringMember(font, kGS_PathKey));
    return {files.begin(), files.end()};
}

}  // namespace pellwick::test

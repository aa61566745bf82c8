#include <sstream>

#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

std::vector<std::string> TestWorld::ActiveFiles() const {
    return FilesBelow("data/fonts/Vantorix");
}

std::set<std::string> ExportedNames() {
    std::istringstream symbols(
        TestProcess({NM_PROGRAM, "-D", "--defined-only", TARNWICK_LIBRARY}).Finish().output);
    std::set<std::string> names;
    for (std::string address, type, name; symbols >> address >> type >> name;)
        names.insert(name.substr(0, name.find('@')));
    return names;
}

}  // namespace pellwick::test

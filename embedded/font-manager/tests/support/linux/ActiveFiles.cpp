#include "tests/support/TestWorld.h"

namespace pellwick::test {

std::vector<std::string> TestWorld::ActiveFiles() const {
    return FilesBelow("data/fonts/Vantorix");
}

}  // namespace pellwick::test

// A host process: activates fonts for a document, says how many, and stays until its input ends. It dies
// without letting go of anything.
#include <unistd.h>

#include <cstdio>

#include "tests/support/TestLibrary.h"

int main(int count, char** words) {
    const pellwick::test::TestLibrary library;
    const auto ids = library.Activate(words[1], std::vector<std::string>(words + 2, words + count));
    std::printf("%zu\n", ids.size());
    std::fflush(stdout);
    char ignored = 0;
    while (read(STDIN_FILENO, &ignored, 1) > 0) {
    }
    _exit(0);
}

// A host: activates fonts for a document, says how many, and dies at the end of its input, letting nothing go.
#include <cstdio>
#include <cstdlib>

#include "platform/ProgramArguments.h"
#include "tests/support/TestLibrary.h"

using pellwick::test::TestLibrary;

int main(int argumentCount, char** argumentWords) {
    platform::ProgramArguments arguments(argumentCount, argumentWords);
    char** words = arguments.Words();
    const TestLibrary library;
    const std::vector<std::string> names(words + 2, words + arguments.Count());
    std::printf("%zu\n", library.Activate(words[1], names).size());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    std::_Exit(0);
}

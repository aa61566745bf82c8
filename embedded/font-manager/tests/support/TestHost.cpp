// A host process: activates fonts for a document, or two of them for design and for a preview, says how many,
// and stays until its input ends. It dies without letting go of anything.
#include <cstdio>
#include <cstdlib>
#include <string_view>

#include "platform/ProgramArguments.h"
#include "tests/support/TestLibrary.h"

namespace {

using pellwick::test::TestLibrary;

size_t HoldForDesign(const TestLibrary& library, int64_t designed, int64_t previewed) {
    const bool isHeld = library.EnableDesignActivation(library.Facade(), static_cast<uint32_t>(designed),
                                                       false, true, nullptr) == 0 &&
                        library.PreviewActivateFonts(library.Facade(),
                                                     pellwick::test::IDsArray({previewed}).get(), true) == 0;
    return isHeld ? 2 : 0;
}

}  // namespace

int main(int argumentCount, char** argumentWords) {
    platform::ProgramArguments arguments(argumentCount, argumentWords);
    char** words = arguments.Words();
    const TestLibrary library;
    const size_t active =
        std::string_view(words[1]) == "--for-design"
            ? HoldForDesign(library, std::atoll(words[2]), std::atoll(words[3]))
            : library.Activate(words[1], std::vector<std::string>(words + 2, words + arguments.Count()))
                  .size();
    std::printf("%zu\n", active);
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    std::_Exit(0);
}

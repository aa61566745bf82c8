#include "platform/ProgramArguments.h"

namespace platform {

ProgramArguments::ProgramArguments(int count, char** words) : mTexts(words, words + count) {
    PointToTexts();
}

}  // namespace platform

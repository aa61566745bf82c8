#include "platform/ProgramArguments.h"

namespace platform {

struct ProgramArguments::StreamState {};

ProgramArguments::ProgramArguments(int count, char** words) : mTexts(words, words + count) {
    PointToTexts();
}

ProgramArguments::~ProgramArguments() = default;

}  // namespace platform

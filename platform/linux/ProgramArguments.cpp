#include "platform/ProgramArguments.h"

namespace platform {

ProgramArguments::ProgramArguments(int count, char** words) : mPointers(words, words + count + 1) {}

ScopedUtf8Console::ScopedUtf8Console() : mPreviousCharacterSet(0) {}
ScopedUtf8Console::~ScopedUtf8Console() = default;

}  // namespace platform

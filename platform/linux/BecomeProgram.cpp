#include "platform/BecomeProgram.h"

#include <unistd.h>

#include <cerrno>

namespace platform {

SystemError BecomeProgram(const std::vector<std::string>& words, int&) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (const std::string& word : words)
        pointers.push_back(const_cast<char*>(word.c_str()));  // which execvp leaves as they are
    pointers.push_back(nullptr);
    execvp(pointers.front(), pointers.data());
    return {errno};
}

}  // namespace platform

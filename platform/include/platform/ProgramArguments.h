// A program's words and what it prints, in UTF-8.
#pragma once

#include <string>
#include <vector>

namespace platform {

/// What main was given, in UTF-8. Linux: as it is. Windows: taken from the system's own command line, since
/// main gets words in a character set that cannot write all names.
class ProgramArguments {
public:
    ProgramArguments(int count, char** words);
    ProgramArguments(const ProgramArguments&) = delete;
    ProgramArguments& operator=(const ProgramArguments&) = delete;

    int Count() const { return static_cast<int>(mPointers.size()) - 1; }
    /// The program's name first, a null pointer last. They live as long as this object.
    char** Words() { return mPointers.data(); }

private:
    std::vector<std::string> mWords;
    std::vector<char*> mPointers;
};

/// While it lives, a console shows what this process prints as the UTF-8 that it is.
class ScopedUtf8Console {
public:
    ScopedUtf8Console();
    ~ScopedUtf8Console();
    ScopedUtf8Console(const ScopedUtf8Console&) = delete;
    ScopedUtf8Console& operator=(const ScopedUtf8Console&) = delete;

private:
    unsigned mPreviousCharacterSet = 0;
};

}  // namespace platform

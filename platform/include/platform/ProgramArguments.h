// What a program is started with.
#pragma once

#include <memory>
#include <string>
#include <vector>

namespace platform {

/// The words of the command line, UTF-8, as main would take them. To be made from main's own arguments,
/// before anything else, and kept for as long as the words are used. Makes the program's streams what UTF-8
/// text needs: on Windows consoles show it, and everything else gets it byte for byte.
class ProgramArguments {
public:
    ProgramArguments(int count, char** words);
    ~ProgramArguments();
    ProgramArguments(const ProgramArguments&) = delete;
    ProgramArguments& operator=(const ProgramArguments&) = delete;

    int Count() const { return static_cast<int>(mTexts.size()); }
    /// Count() words and a null pointer.
    char** Words() { return mWords.data(); }
    /// The word at `index`, empty when there are fewer. The first is the program.
    std::string operator[](int index) const {
        return index < Count() ? mTexts[static_cast<size_t>(index)] : std::string();
    }

private:
    struct StreamState;
    void PointToTexts();

    std::vector<std::string> mTexts;
    std::vector<char*> mWords;
    std::unique_ptr<StreamState> mStreamState;  ///< what the streams get back at the end
};

}  // namespace platform

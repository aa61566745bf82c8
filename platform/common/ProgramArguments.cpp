#include "platform/ProgramArguments.h"

namespace platform {

void ProgramArguments::PointToTexts() {
    for (std::string& text : mTexts)
        mWords.push_back(text.data());
    mWords.push_back(nullptr);
}

}  // namespace platform

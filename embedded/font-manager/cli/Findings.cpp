#include "cli/Findings.h"

namespace pellwick::cli {

void Findings::Add(const char* state, const std::string& about, const std::string& text,
                   const std::string& mend) {
    mAll.push_back({{"state", state}, {"about", about}, {"text", text}, {"mend", mend}});
    mIsAnythingWrong = mIsAnythingWrong || state == std::string_view(kWrong);
}

void Findings::Print() const {
    for (const Json& each : mAll) {
        const std::string mend = StringMember(each, "mend");
        std::string state = StringMember(each, "state");
        state.resize(sizeof kWarning, ' ');
        PrintLine(state + StringMember(each, "about") + ": " + StringMember(each, "text") +
                  (mend.empty() ? "" : "; " + mend));
    }
}

}  // namespace pellwick::cli

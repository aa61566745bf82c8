// What the doctor finds.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "cli/AgentSession.h"

namespace pellwick::cli {

// How something stands.
inline constexpr char kOk[] = "ok";
inline constexpr char kWarning[] = "warning";
inline constexpr char kWrong[] = "wrong";

/// What was looked at, in the order in which it is told.
class Findings {
public:
    /// `mend`: what to do about it; empty where there is nothing to do.
    void Add(const char* state, const std::string& about, const std::string& text,
             const std::string& mend = {});
    void Print() const;
    const Json& All() const { return mAll; }
    ExitStatus Status() const { return mIsAnythingWrong ? kExit_CouldNot : kExit_Done; }

private:
    Json mAll = Json::array();
    bool mIsAnythingWrong = false;
};

}  // namespace pellwick::cli

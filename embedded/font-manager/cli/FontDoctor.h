// Why fonts, and those of documents, are active or not.
#pragma once

#include <string>

#include "cli/Findings.h"

namespace pellwick::cli {

/// Why each of the fonts is active, or is not.
void ExamineFonts(AgentSession& session, const Json& fonts, Findings& findings);
/// What the document at `path` would be given if it were opened now.
void ExamineDocument(AgentSession& session, const std::string& path, Findings& findings);

}  // namespace pellwick::cli

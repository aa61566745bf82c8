// The dialogs as JSON: in files of answers, and where questions are recorded. docs/framework.md has the formats.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "presenters/Dialogs.h"

std::string DialogName(const Dialog& dialog);

/// What it shows.
nlohmann::json DialogDetails(const Dialog& dialog);

/// Writes into `dialog` what `answer` chooses, and returns whether it confirms it: true confirms it as it stands, an
/// object with choices, false and null not. An answer that means nothing is logged and does not confirm it either.
bool TakeAnswer(const nlohmann::json& answer, Dialog& dialog);

/// What was chosen in a dialog that was confirmed: an answer that chooses the same again.
nlohmann::json ChosenAnswer(const Dialog& dialog);

/// Logs that the answer to that dialog means nothing.
void ReportWrongAnswer(const Dialog& dialog, const nlohmann::json& answer);

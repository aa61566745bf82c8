// The dialogs as forms in a terminal.
#pragma once

#include <string_view>

#include "presenters/Presenter.h"
#include "presenters/Terminal.h"

/// Shows `details`, a DialogQuestion's, and asks. False when the user cancels and at the end of input.
using TerminalForm = DialogAnswer (*)(Terminal& terminal, const nlohmann::json& details);

/// The form for the dialog of that name; null when there is none.
TerminalForm FindTerminalForm(std::string_view dialog);

// The command box: the plug-in menu as a dialog.
#pragma once

#include <string>

#include "ErrorCodes.h"

namespace CommandDialog {

/// Shows the box and carries out what the user chooses. `document`: empty when none is open. 0 also when the
/// user chose nothing; kInvalidParam without a framework to show it; kUnknownError while it shows already.
ErrorCode InvokeCommandDialog(const std::string& document);

}  // namespace CommandDialog

// What a process that shows dialogs and the one that it shows them for say to each other: JSON objects, a line each.
//
// To the dialogs' side comes one request, {"show": "form", "folder" or "progress", ...}, and behind one of a work its
// steps, {"done": 1, "total": 5}. Back come signs of life, {"alive": true, "used": BOOL}, every second, and then
// {"answer": ...} or {"failure": "why nothing can be shown"}. Whoever is left alone on the line ends the dialog.
#pragma once

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "platform/NativeDialogs.h"

namespace platform::dialog_messages {

/// Where the dialogs' side finds the line, and the argument that says so.
inline constexpr int kLine = 3;
inline constexpr char kLineArgument[] = "--line";

/// Ill-formed UTF-8 becomes U+FFFD. With the end of the line.
std::string LineOf(const nlohmann::json& message);

/// `icon`: a name of the desktop's icons; may be empty.
nlohmann::json FormRequest(const Form& form, const std::string& icon);
/// What FormRequest was given. Throws nlohmann::json::exception for anything else.
Form RequestedForm(const nlohmann::json& request);

/// What was made of the form, and the number of the button.
nlohmann::json FormAnswer(const Form& form, int button);
/// Writes what was chosen into `form`. Nothing, and `form` as it was, for an answer that does not fit it.
std::optional<int> TakeFormAnswer(const nlohmann::json& answer, Form& form);

nlohmann::json FolderAnswerMessage(const FolderAnswer& answer);
std::optional<FolderAnswer> TakeFolderAnswer(const nlohmann::json& answer);

}  // namespace platform::dialog_messages

// A form of texts, check boxes, lists, drop-down lists and buttons.
#pragma once

#include <nlohmann/json.hpp>

/// Shows the form of a request; the answer to send.
nlohmann::json AskForm(const nlohmann::json& request);

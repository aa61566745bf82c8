// The toolkit's folder chooser.
#pragma once

#include <nlohmann/json.hpp>

/// Shows the chooser of a request; the answer to send.
nlohmann::json AskFolder(const nlohmann::json& request);

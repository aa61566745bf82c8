// What panel messages may look like, by docs/panel-schemas.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace panel_schemas {

enum class Direction { kToPlugin, kToPanel };

/// What keeps it from being one of the messages; empty for nothing.
std::string FaultsOf(Direction direction, const nlohmann::json& message);

}  // namespace panel_schemas

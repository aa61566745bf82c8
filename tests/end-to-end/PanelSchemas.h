// What panel messages may look like, by docs/panel-schemas.
#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>

namespace panel_schemas {

enum class Direction { kToPlugin, kToPanel };

std::set<std::string> Names(Direction direction);

struct Match {
    std::string name;    ///< of the message that it is; empty for none
    std::string faults;  ///< what keeps it from being one
};
Match Find(Direction direction, const nlohmann::json& message);

}  // namespace panel_schemas

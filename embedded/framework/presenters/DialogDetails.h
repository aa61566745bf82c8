// Reading what a dialog is to show.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

inline std::string StringIn(const nlohmann::json& object, const char* member) {
    return object.at(member).get<std::string>();
}

inline bool IsTrue(const nlohmann::json& object, const char* member) {
    return object.at(member).get<bool>();
}

// A document that the host has open.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "CoreLibrary.h"

struct OpenedDocument {
    std::string path;
    uint32_t code = 0;
    int numFontsActivated = 0;
    nlohmann::json matched = nlohmann::json::array();
    nlohmann::json unmatched = nlohmann::json::array();
};

/// Whether the core opened it; it answers 1 as well when all went well.
bool IsSuccess(uint32_t code);

/// Opens the document at the full path.
OpenedDocument OpenDocument(const CoreLibrary& core, const std::string& path);

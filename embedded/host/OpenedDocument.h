// A document that the host has open.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "CoreLibrary.h"

struct OpenedDocument {
    std::string path;
    uint32_t code = 0;
    int numFontsActivated = 0;
    std::optional<size_t> numFontsNamed;  ///< by the host; nothing where the core searched the file
    nlohmann::json matched = nlohmann::json::array();
    nlohmann::json unmatched = nlohmann::json::array();
};

/// Whether the core opened it; it answers 1 as well when all went well.
bool IsSuccess(uint32_t code);

/// Opens the document at the full path. `fonts`: records of those that it uses; null has the core search it.
OpenedDocument OpenDocument(const CoreLibrary& core, const std::string& path, const nlohmann::json& fonts);

// A document that the host has open.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <vector>

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

/// The path of a document that was named by its path or by a "file" URL.
std::string PathOfDocument(const std::string& file);

/// The full paths of the files, with an error line for what is none.
std::vector<std::string> FindDocuments(const std::vector<std::string>& files);

/// Opens the document at the full path. `fonts`: records of those that it uses; null has the core search it.
OpenedDocument OpenDocument(const CoreLibrary& core, const std::string& path, const nlohmann::json& fonts);

/// Opens a document that there is not, of the path "--fonts", which uses the fonts of those names.
OpenedDocument OpenFonts(const CoreLibrary& core, const std::vector<std::string>& names);

/// What a document's lists leave unsaid: the core's result speaks of them alone, and they are empty as well
/// when the font manager could not be asked for the fonts, or the document not be searched. Empty: nothing.
std::string WhyNoFontsAreKnown(const OpenedDocument& document);

// The fonts of a document, by a reader of its format.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "DocumentReader.h"

/// Reads documents one after another. Without the program that reads, says so once and knows no format.
class FontFinder {
public:
    /// What a reader makes of the document; of status kUnknown where none can.
    documents::DocumentFonts Find(const std::string& path);
    /// The same as records for the core; null where it is to search the document itself, after a line that
    /// says so where a reader was expected to do better.
    nlohmann::json FindForCore(const std::string& path);

private:
    documents::DocumentReader mReader{documents::DocumentReader::DefaultProgram()};
    bool mIsMissing = false;
};

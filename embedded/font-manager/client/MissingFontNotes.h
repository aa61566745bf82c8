// What documents were found to lack, for the lists that go with collected fonts.
#pragma once

#include <deque>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>

#include "ipc/Message.h"

namespace pellwick {

/// Of the documents that were opened last. Any thread.
class MissingFontNotes {
public:
    /// `fonts`: all that the document at `path` lacks now, a list of MissingFont.
    void Note(const std::string& path, Json fonts);
    /// Nothing where the document is not known any more.
    std::optional<Json> Of(const std::string& path);

private:
    std::mutex mDocumentsLock;
    std::deque<std::pair<std::string, Json>> mDocuments;  ///< by path, last one first
};

}  // namespace pellwick

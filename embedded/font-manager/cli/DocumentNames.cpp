#include "cli/DocumentNames.h"

#include <nlohmann/json.hpp>
#include <set>

#include "FontRecords.h"
#include "GBinaryDocumentFontExtractor.h"
#include "PlacedDocuments.h"
#include "cli/AgentSession.h"

namespace pellwick::cli {
namespace {

documents::DocumentFonts Read(const std::string& path) {
    try {
        documents::DocumentReader reader(documents::DocumentReader::DefaultProgram());
        return ReadWithPlaced(reader, path);
    } catch (const documents::NoDocumentReader&) {
        return {};
    }
}

Json Search(const std::string& path) {
    std::set<std::string> names;
    const GFileSystemSpec spec(path);
    if (GBinaryDocumentFontExtractor(spec).ExtractFontNames(names) != CoreErrorCodes::kSuccess)
        throw Failure(kExit_CouldNot, path + " cannot be read");
    EraseImpossibleNames(names);
    return names;
}

}  // namespace

Json FontsOfDocument(const std::string& path) {
    const documents::DocumentFonts found = Read(path);
    return found.status == documents::ReadStatus::kRead ? documents::FontRecords(found) : Search(path);
}

}  // namespace pellwick::cli

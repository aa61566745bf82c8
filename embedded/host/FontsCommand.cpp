#include <nlohmann/json.hpp>
#include <set>

#include "Commands.h"
#include "GBinaryDocumentFontExtractor.h"
#include "Output.h"

namespace {

using nlohmann::json;

void PrintNames(const std::string& file, const std::set<std::string>& names, bool showFile) {
    for (const std::string& name : names)
        PrintLine(showFile ? file + ": " + name : name);
}

}  // namespace

int RunFonts(const std::vector<std::string>& files, bool asJSON) {
    int status = exit_status::kDone;
    for (const std::string& file : files) {
        std::set<std::string> names;
        GBinaryDocumentFontExtractor extractor{GFileSystemSpec(file)};
        const ErrorCode code = extractor.ExtractFontNames(names);
        json line{{"file", file}};
        if (code != CoreErrorCodes::kSuccess) {
            status = exit_status::kFailed;
            line["error"] = ErrorCodeToName(code);
            line["code"] = code;
            if (!asJSON)
                PrintError(file + " cannot be read (" + ErrorCodeToName(code) +
                           "); give the path of a document");
        } else if (asJSON) {
            line["fonts"] = names;
        } else {
            PrintNames(file, names, files.size() > 1);
        }
        if (asJSON)
            PrintJson(line.dump(-1, ' ', false, json::error_handler_t::replace));
    }
    return status;
}

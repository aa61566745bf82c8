// What hosts report about their documents.
#include <nlohmann/json.hpp>

#include "agent/Commands.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

std::string DocumentPath(const Json& arguments) {
    std::string path = StringMember(arguments, "path");
    if (path.empty())
        throw CommandError(CoreErrorCodes::kMissingParam, "the document's path is missing");
    return path;
}

Json SaveDocumentFonts(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    const std::string path = DocumentPath(arguments);
    const bool replace = BoolMember(arguments, "replace");
    const std::string usage = StringMember(arguments, "usage");
    Transaction transaction(manager.database);
    manager.documents.SaveFonts(path, manager.activations.FontsLeasedFor(context.client.process, path),
                                replace);
    if (replace || !usage.empty())
        manager.documents.SetFontUsage(path, usage);
    transaction.Commit();
    return Json::object();
}

Json GetFontUsage(CommandContext& context, const Json& arguments) {
    const auto usage = context.manager.documents.FontUsage(DocumentPath(arguments));
    if (!usage)
        throw CommandError(CoreErrorCodes::kNotFound, "nothing is recorded about this document");
    return {{"usage", *usage}};
}

Json WriteFontUsage(CommandContext& context, const Json& arguments) {
    context.manager.documents.SetFontUsage(DocumentPath(arguments), StringMember(arguments, "usage"));
    return Json::object();
}

Json ClearDocument(CommandContext& context, const Json& arguments) {
    context.manager.documents.Clear(DocumentPath(arguments));
    return Json::object();
}

}  // namespace

void AddDocumentCommands(CommandTable& table) {
    table[method::kSaveDocumentFonts] = SaveDocumentFonts;
    table[method::kGetFontUsage] = GetFontUsage;
    table[method::kWriteFontUsage] = WriteFontUsage;
    table[method::kClearDocument] = ClearDocument;
}

}  // namespace pellwick

// What hosts report about their documents.
#include <nlohmann/json.hpp>

#include "agent/FontRecord.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

std::string DocumentPath(const Json& arguments) {
    std::string path = StringMember(arguments, member::kPath);
    if (path.empty())
        throw CommandError(CoreErrorCodes::kMissingParam, "the document's path is missing");
    return path;
}

}  // namespace

Json commands::SaveDocumentFonts(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    const std::string path = DocumentPath(arguments);
    const bool replace = BoolMember(arguments, member::kReplace);
    const std::string usage = StringMember(arguments, member::kUsage);
    Transaction transaction(manager.database);
    manager.documents.SaveFonts(path, manager.activations.FontsLeasedFor(context.client.process, path),
                                replace);
    if (replace || !usage.empty())
        manager.documents.SetFontUsage(path, usage);
    transaction.Commit();
    return Json::object();
}

Json commands::GetFontUsage(CommandContext& context, const Json& arguments) {
    const auto usage = context.manager.documents.FontUsage(DocumentPath(arguments));
    if (!usage)
        throw CommandError(CoreErrorCodes::kNotFound, "nothing is recorded about this document");
    return {{member::kUsage, *usage}};
}

Json commands::WriteFontUsage(CommandContext& context, const Json& arguments) {
    context.manager.documents.SetFontUsage(DocumentPath(arguments), StringMember(arguments, member::kUsage));
    return Json::object();
}

/// Fonts that are gone meanwhile are left out.
Json commands::NoteChoices(CommandContext& context, const Json& arguments) {
    FontManager& manager = context.manager;
    Transaction transaction(manager.database);
    for (const Json& choice : ArrayMember(arguments, member::kChoices)) {
        const uint32_t fontID = FontIDOf(IntegerMember(choice, member::kFont));
        const std::string name = StringMember(choice, member::kName);
        if (manager.fonts.Find(fontID) && !name.empty() && name.size() <= kMaxNameSize)
            manager.documents.SetChoice(DocumentPath(choice), name, fontID);
    }
    transaction.Commit();
    return Json::object();
}

Json commands::ClearDocument(CommandContext& context, const Json& arguments) {
    context.manager.documents.Clear(DocumentPath(arguments));
    return Json::object();
}

}  // namespace pellwick

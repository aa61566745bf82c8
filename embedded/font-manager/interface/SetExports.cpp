// Sets of fonts.
#include <nlohmann/json.hpp>

#include "common/Protocol.h"
#include "interface/CFJson.h"
#include "interface/Exports.h"
#include "interface/Library.h"

using namespace pellwick;

uint32_t CreateTopLevelSet(PluginFacadeRef facade, CFStringRef name, int32_t workgroupID, int32_t* outSetID) {
    return Guarded([&] {
        if (name == nullptr || outSetID == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json set;
        const ErrorCode code = Library::Get().Call(
            facade, method::kCreateSet, {{"name", cf::ToUtf8(name)}, {"workgroupID", workgroupID}}, set);
        if (code == CoreErrorCodes::kSuccess)
            *outSetID = static_cast<int32_t>(IntegerMember(set, kSetIDMember));
        return code;
    });
}

uint32_t AddFontsToSets(PluginFacadeRef facade, CFArrayRef fontIDs, CFArrayRef setIDs) {
    return Guarded([&] {
        if (fontIDs == nullptr || setIDs == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json ignored;
        return Library::Get().Call(facade, method::kAddFontsToSets,
                                   {{"fonts", JsonFromCF(fontIDs)}, {"sets", JsonFromCF(setIDs)}}, ignored);
    });
}

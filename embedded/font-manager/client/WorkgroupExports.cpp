// Workgroups.
#include <nlohmann/json.hpp>

#include "client/CFJson.h"
#include "client/Exports.h"
#include "common/Protocol.h"

using namespace pellwick;

namespace {

ErrorCode ListWorkgroups(PluginFacadeRef facade, Json& workgroups) {
    Json result;
    const ErrorCode code = Library::Get().Call(facade, method::kListWorkgroups, Json::object(), result);
    if (code == CoreErrorCodes::kSuccess)
        workgroups = ArrayMember(result, member::kWorkgroups);
    return code;
}

}  // namespace

uint32_t GetAllWorkgroupsForUser(PluginFacadeRef facade, CFMutableArrayRef workgroups) {
    return Guarded([&] {
        if (workgroups == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json records;
        const ErrorCode code = ListWorkgroups(facade, records);
        AppendJson(workgroups, records);
        return code;
    });
}

uint32_t GetSystemWorkgroupID(PluginFacadeRef facade, int32_t* outWorkgroupID) {
    return Guarded([&] {
        if (outWorkgroupID == nullptr)
            return CoreErrorCodes::kNullPointer;
        Json workgroups;
        const ErrorCode code = ListWorkgroups(facade, workgroups);
        if (code != CoreErrorCodes::kSuccess)
            return code;
        for (const Json& workgroup : workgroups) {
            if (IntegerMember(workgroup, kGS_WorkgroupTypeKey) != kWorkgroupType_System)
                continue;
            *outWorkgroupID = static_cast<int32_t>(IntegerMember(workgroup, kGS_WorkgroupIDKey));
            return code;
        }
        return CoreErrorCodes::kNotFound;
    });
}

uint32_t IsAllWorkgroups(PluginFacadeRef facade, int32_t workgroupID, bool* outIsAll) {
    return Answer(facade, outIsAll, workgroupID == kWorkgroupID_All);
}

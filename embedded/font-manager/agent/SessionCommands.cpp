// Greeting, state, log-in and the end.
#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/NewNames.h"
#include "agent/Requests.h"
#include "common/Protocol.h"
#include "platform/Processes.h"

namespace pellwick {
constexpr int kNoServer = 0;  ///< the server type of a log-in on this machine alone

Json commands::Hello(CommandContext& context, const Json& arguments) {
    const long long version = IntegerMember(arguments, member::kProtocol);
    if (version != kProtocolVersion)
        throw CommandError(CoreErrorCodes::kVersionMismatch,
                           "the running agent is of another version; stop it with \"Pellwick stop\"");
    if (arguments.contains(member::kTaken)) {
        context.client.isHost = true;
        // There is always a next one.
        context.client.lastTaken =
            std::min(IntegerMember(arguments, member::kTaken), std::numeric_limits<long long>::max() - 1);
    }
    return Json::object();
}

Json commands::Subscribe(CommandContext& context, const Json&) {
    context.client.isSubscribed = true;
    return Json::object();
}

Json commands::GetStatus(CommandContext& context, const Json&) {
    FontManager& manager = context.manager;
    return {{member::kProcess, platform::CurrentProcessId()},
            {member::kFonts, manager.fonts.Count()},
            {member::kSystemFonts, manager.fonts.CountSystemFonts()},
            {member::kMissingFiles, manager.fonts.CountMissingFiles()},
            {member::kActiveFiles, manager.fonts.CountActiveFiles()},
            {member::kHosts, manager.CountHosts()},
            {member::kLoggedIn, manager.settings.IsLoggedIn()},
            {member::kUserName, manager.settings.UserName()},
            {member::kStandalone, manager.settings.IsStandalone()},
            {member::kGoogleWebFonts, manager.settings.AreGoogleWebFontsEnabled()},
            {member::kSchemaVersion, kSchemaVersion},
            {member::kWorkgroup, manager.CurrentWorkgroup().name},
            {member::kDefaultWorkgroup, manager.DefaultWorkgroup().name},
            {member::kVault, manager.vault.Folder()},
            {member::kDataFolder, manager.locations.dataFolder},
            {member::kPreviewFolder, manager.previews.Folder()},
            {member::kLinkFolder, manager.activeFonts->Folder()}};
}

Json commands::Stop(CommandContext& context, const Json&) {
    context.audience.RequestStop();
    return {{member::kProcess, platform::CurrentProcessId()}};
}

Json commands::LogIn(CommandContext& context, const Json& arguments) {
    context.manager.settings.LogIn(NewName(arguments, member::kName, "the name to log in with"));
    context.audience.Announce(kPluginCallback_LoggedIn, {{member::kServerType, kNoServer}});
    return Json::object();
}

Json commands::LogOut(CommandContext& context, const Json&) {
    context.manager.settings.LogOut();
    context.audience.Announce(kPluginCallback_LoggedOut, nullptr);
    return Json::object();
}

Json commands::SetStandalone(CommandContext& context, const Json& arguments) {
    const bool isStandalone = BoolMember(arguments, member::kOn);
    if (context.manager.settings.IsStandalone() == isStandalone)
        return Json::object();
    context.manager.settings.SetStandalone(isStandalone);
    context.audience.Announce(isStandalone ? kPluginCallback_WentOffline : kPluginCallback_WentOnline,
                              nullptr);
    return Json::object();
}

Json commands::SetGoogleWebFonts(CommandContext& context, const Json& arguments) {
    const bool isEnabled = BoolMember(arguments, member::kOn);
    context.manager.settings.EnableGoogleWebFonts(isEnabled);
    context.audience.Announce(kPluginCallback_GoogleWebFontsEnabled, isEnabled);
    return Json::object();
}

}  // namespace pellwick

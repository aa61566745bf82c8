// Greeting, state, log-in and the end.
#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>

#include "TarnwickPluginInterface.h"
#include "agent/Commands.h"
#include "agent/NewNames.h"
#include "common/Protocol.h"
#include "platform/Processes.h"

namespace pellwick {
namespace {

constexpr int kNoServer = 0;  ///< the "serverType" of a log-in on this machine alone

Json Hello(CommandContext& context, const Json& arguments) {
    const long long version = IntegerMember(arguments, "protocol");
    if (version != kProtocolVersion)
        throw CommandError(CoreErrorCodes::kVersionMismatch,
                           "the running agent is of another version; stop it with \"Pellwick stop\"");
    if (arguments.contains("taken")) {
        context.client.isHost = true;
        // There is always a next one.
        context.client.lastTaken =
            std::min(IntegerMember(arguments, "taken"), std::numeric_limits<long long>::max() - 1);
    }
    return {{"protocol", kProtocolVersion}, {"process", platform::CurrentProcessId()}};
}

Json Subscribe(CommandContext& context, const Json&) {
    context.client.isSubscribed = true;
    return Json::object();
}

Json GetStatus(CommandContext& context, const Json&) {
    FontManager& manager = context.manager;
    return {{"process", platform::CurrentProcessId()},
            {"fonts", manager.fonts.Count()},
            {"activeFiles", manager.fonts.CountActiveFiles()},
            {"hosts", manager.activations.Hosts().size()},
            {"loggedIn", manager.settings.IsLoggedIn()},
            {"userName", manager.settings.UserName()},
            {"standalone", manager.settings.IsStandalone()},
            {"googleWebFonts", manager.settings.AreGoogleWebFontsEnabled()},
            {"schemaVersion", kSchemaVersion},
            {"workgroup", manager.CurrentWorkgroup().name},
            {"defaultWorkgroup", manager.DefaultWorkgroup().name},
            {"vault", manager.vault.Folder()},
            {"dataFolder", manager.locations.dataFolder},
            {"previewFolder", manager.previews.Folder()},
            {"linkFolder", manager.activeFonts->Folder()}};
}

Json Stop(CommandContext& context, const Json&) {
    context.audience.RequestStop();
    return {{"process", platform::CurrentProcessId()}};
}

Json LogIn(CommandContext& context, const Json& arguments) {
    context.manager.settings.LogIn(NewName(arguments, "name", "the name to log in with"));
    context.audience.Announce(kPluginCallback_LoggedIn, {{"serverType", kNoServer}});
    return Json::object();
}

Json LogOut(CommandContext& context, const Json&) {
    context.manager.settings.LogOut();
    context.audience.Announce(kPluginCallback_LoggedOut, nullptr);
    return Json::object();
}

Json SetStandalone(CommandContext& context, const Json& arguments) {
    const bool isStandalone = BoolMember(arguments, "on");
    if (context.manager.settings.IsStandalone() == isStandalone)
        return Json::object();
    context.manager.settings.SetStandalone(isStandalone);
    context.audience.Announce(isStandalone ? kPluginCallback_WentOffline : kPluginCallback_WentOnline,
                              nullptr);
    return Json::object();
}

Json SetGoogleWebFonts(CommandContext& context, const Json& arguments) {
    const bool isEnabled = BoolMember(arguments, "on");
    context.manager.settings.EnableGoogleWebFonts(isEnabled);
    context.audience.Announce(kPluginCallback_GoogleWebFontsEnabled, isEnabled);
    return Json::object();
}

}  // namespace

void AddSessionCommands(CommandTable& table) {
    table[method::kHello] = Hello;
    table[method::kSubscribe] = Subscribe;
    table[method::kGetStatus] = GetStatus;
    table[method::kStop] = Stop;
    table[method::kLogIn] = LogIn;
    table[method::kLogOut] = LogOut;
    table[method::kSetStandalone] = SetStandalone;
    table[method::kSetGoogleWebFonts] = SetGoogleWebFonts;
}

}  // namespace pellwick

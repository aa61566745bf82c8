#include "platform/NativeDialogs.h"

#include <algorithm>
#include <cstdlib>

#include "HelperDialogs.h"
#include "platform/DynamicLibrary.h"
#include "platform/Environment.h"
#include "platform/Files.h"

namespace platform {
namespace {

constexpr char kProgram[] = "vantorix/PluginCoreDialogs";
constexpr long kLongestTimeout = 24L * 3600;

DialogLimits LimitsOfTheUser() {
    DialogLimits limits;
    const std::string seconds = EnvironmentVariable("PLUGINCORE_DIALOG_TIMEOUT");
    if (const long number = std::strtol(seconds.c_str(), nullptr, 10); number > 0)
        limits.unused = std::chrono::seconds(std::min(number, kLongestTimeout));
    return limits;
}

}  // namespace

template <>
NativeDialogs& SystemDefault<NativeDialogs>() {
    static const char kAddressInThisModule = 0;
    // Never destroyed: a host may call while its process ends.
    static auto& dialogs = *new HelperDialogs(
        FolderPart(Current<DynamicLibraries>().PathOfModuleAt(&kAddressInThisModule)) + kProgram,
        LimitsOfTheUser());
    return dialogs;
}

}  // namespace platform

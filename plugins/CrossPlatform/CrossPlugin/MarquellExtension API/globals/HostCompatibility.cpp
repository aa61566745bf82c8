#include "HostCompatibility.h"

#include "HostApplication.h"
#include "MarquellGlobals.h"
#include "PluginIdentity.h"
#include "TraceLog.h"
#include "platform/Processes.h"

namespace {

bool MeetsMinimumVersion(const std::string& hostVersion, const std::string& minimum) {
    if (minimum.empty() || CompareVersions(minimum, hostVersion) <= 0)
        return true;
    LogMessage(0,
               "RunningInCompatibleHostApp: app version (%s) incompatible with minimumVersionRequired (%s)",
               hostVersion.c_str(), minimum.c_str());
    return false;
}

bool HasRequiredPrefix(const std::string& hostVersion, const std::string& prefix) {
    if (hostVersion.compare(0, prefix.size(), prefix) == 0)
        return true;
    LogMessage(0, "RunningInCompatibleHostApp: app version (%s) incompatible with versionPrefixRequired (%s)",
               hostVersion.c_str(), prefix.c_str());
    return false;
}

}  // namespace

bool MarquellGlobals::RunningInCompatibleHostApp(bool& disableDialogs) {
    auto& processes = platform::Current<platform::Processes>();
    const std::string prefix = GetVersionPrefixRequired();
    const std::string minimum = GetHostAppMinimumVersion();
    const std::string hostVersion = GetFileVersionString(processes.CurrentExecutablePath(), "FileVersion");
    const std::string processName = processes.CurrentName();
    LogMessage(0,
               "In %s(), versionPrefixRequired='%s', minimumVersionRequired='%s', hostAppVersion='%s', "
               "hostAppProcessName='%s'",
               "`anonymous-namespace'::RunningInCompatibleHostApp", prefix.c_str(), minimum.c_str(),
               hostVersion.c_str(), processName.c_str());
    bool isCompatible = true;
    if (!NamesAHostProcess(processName)) {
        disableDialogs = true;
        isCompatible = false;
    } else if (prefix.empty()) {
        isCompatible = MeetsMinimumVersion(hostVersion, minimum);
    } else {
        isCompatible = HasRequiredPrefix(hostVersion, prefix);
    }
    LogMessage(0, "RunningInCompatibleHostApp: returning %d, and disable dialogs is %d", isCompatible,
               disableDialogs);
    return isCompatible;
}

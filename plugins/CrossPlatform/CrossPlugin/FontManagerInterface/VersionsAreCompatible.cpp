#include "VersionsAreCompatible.h"

#include <algorithm>

#include "TraceLog.h"

namespace {

constexpr char kDevelopmentVersion[] = "1.0.0.0";
constexpr int kComparedComponents = 3;

bool ComponentsAgree(const std::string& a, const std::string& b) {
    const std::string& shorter = a.size() <= b.size() ? a : b;
    const std::string& longer = a.size() <= b.size() ? b : a;
    int dots = 0;
    for (size_t index = 0; index < shorter.size(); ++index) {
        if (shorter[index] != longer[index])
            return false;
        if (shorter[index] == '.' && ++dots == kComparedComponents)
            return true;
    }
    return longer[shorter.size()] == '.';
}

}  // namespace

bool VersionsAreCompatible(const std::string& pluginVersion, const std::string& interfaceVersion) {
    const bool isEitherOpen = pluginVersion.empty() || interfaceVersion.empty() ||
                              pluginVersion == kDevelopmentVersion || interfaceVersion == kDevelopmentVersion;
    const bool result =
        pluginVersion == interfaceVersion || isEitherOpen || ComponentsAgree(pluginVersion, interfaceVersion);
    LogMessage(0, "%s('%s', '%s') returning %d", "VersionsAreCompatible", pluginVersion.c_str(),
               interfaceVersion.c_str(), result);
    return result;
}

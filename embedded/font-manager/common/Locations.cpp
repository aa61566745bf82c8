#include "common/Locations.h"

#include <algorithm>
#include <cstdint>

#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/System.h"

namespace pellwick {
namespace {

constexpr uint64_t kAddressSizeLimit = 4096;

std::string Join(const std::string& folder, const std::string& name) {
    return folder + platform::kPathSeparator + name;
}

std::string KnownPath(platform::KnownFolder folder) {
    return platform::Current<platform::Folders>().PathOf(folder);
}

}  // namespace

Locations Locations::OfThisUser() {
    const std::string userData = KnownPath(platform::KnownFolder::kLocalApplicationData);
    const std::string vantorix = Join(userData, "Vantorix");
    Locations locations;
    locations.dataFolder = Join(vantorix, "Pellwick");
    locations.databasePath = Join(locations.dataFolder, "fonts.sqlite");
    locations.vaultFolder = Join(locations.dataFolder, "vault");
    locations.session = platform::SessionNumber();
    const std::string agent =
        "agent" + (locations.session == 0 ? "" : "-" + std::to_string(locations.session));
    locations.lockPath = Join(locations.dataFolder, agent + ".lock");
    locations.addressPath = Join(locations.dataFolder, agent + ".address");
    locations.linkFolder = Join(Join(userData, "fonts"), "Vantorix");
    const std::string cache = Join(KnownPath(platform::KnownFolder::kCache), "Vantorix");
    locations.previewFolder = Join(Join(cache, "Pellwick"), "previews");
    locations.logFolder = Join(vantorix, "Logs");
    locations.launchInfoPath = Join(vantorix, "com.vantorix.Pellwick-LaunchInfo.conf");
    locations.ownFolders = {vantorix, locations.linkFolder, cache,
                            Join(KnownPath(platform::KnownFolder::kConfiguration), "Vantorix")};
    return locations;
}

bool Locations::IsOwn(const std::string& path) const {
    return std::any_of(ownFolders.begin(), ownFolders.end(), [&path](const std::string& folder) {
        return path == folder || path.starts_with(folder + platform::kPathSeparator);
    });
}

std::string Locations::AgentAddress() const {
    std::string address;
    if (platform::ReadWholeFile(addressPath, address, kAddressSizeLimit))
        return {};
    return address;
}

}  // namespace pellwick

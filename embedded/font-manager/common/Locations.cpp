#include "common/Locations.h"

#include <array>
#include <cstdint>
#include <cstdio>

#include "platform/Files.h"
#include "platform/Folders.h"
#include "platform/LocalSockets.h"

namespace pellwick {
namespace {

constexpr uint64_t kAddressSizeLimit = 4096;

std::string Join(const std::string& folder, const std::string& name) {
    return folder + platform::kPathSeparator + name;
}

std::string KnownPath(platform::KnownFolder folder) {
    return platform::Current<platform::Folders>().PathOf(folder);
}

/// Tells data folders apart in the name of a socket: FNV-1a, 64 bits
/// (http://www.isthe.com/chongo/tech/comp/fnv/).
std::string ShortHash(const std::string& text) {
    uint64_t hash = 0xcbf29ce484222325;
    for (const char character : text)
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    std::array<char, 17> digits{};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(hash));
    return digits.data();
}

}  // namespace

Locations Locations::OfThisUser() {
    const std::string userData = KnownPath(platform::KnownFolder::kLocalApplicationData);
    const std::string vantorix = Join(userData, "Vantorix");
    Locations locations;
    locations.dataFolder = Join(vantorix, "Pellwick");
    locations.databasePath = Join(locations.dataFolder, "fonts.sqlite");
    locations.vaultFolder = Join(locations.dataFolder, "vault");
    locations.lockPath = Join(locations.dataFolder, "agent.lock");
    locations.addressPath = Join(locations.dataFolder, "agent.address");
    locations.linkFolder = Join(Join(userData, "fonts"), "Vantorix");
    locations.previewFolder =
        Join(Join(Join(KnownPath(platform::KnownFolder::kCache), "Vantorix"), "Pellwick"), "previews");
    locations.logFolder = Join(vantorix, "Logs");
    locations.launchInfoPath = Join(vantorix, "com.vantorix.Pellwick-LaunchInfo.conf");
    return locations;
}

std::vector<std::string> Locations::SocketPaths() const {
    const std::string hash = ShortHash(dataFolder);
    std::vector<std::string> paths;
    const auto add = [&paths](const std::string& path) {
        if (path.size() <= platform::kLocalSocketPathLimit)
            paths.push_back(path);
    };
    if (const std::string runtime = KnownPath(platform::KnownFolder::kRuntime); !runtime.empty())
        add(Join(Join(runtime, "Vantorix"), "Pellwick-" + hash));
    add(Join(dataFolder, "agent.socket"));
    for (const std::string& temporary : {KnownPath(platform::KnownFolder::kTemporary), std::string("/tmp")})
        add(Join(Join(temporary, "Vantorix-" + hash), "socket"));
    return paths;
}

std::string Locations::AgentAddress() const {
    std::string address;
    if (platform::ReadWholeFile(addressPath, address, kAddressSizeLimit))
        return {};
    return address;
}

}  // namespace pellwick

// Where the font manager keeps its things. Agent, command line and client library agree on these places
// because they all compute them here, from the user's data folder.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace pellwick {

struct Locations {
    uint32_t session = 0;        ///< see platform::SessionNumber; an agent serves one session
    std::string dataFolder;      ///< shared by the agents of the user's sessions
    std::string databasePath;    ///< fonts, workgroups, activations, settings
    std::string vaultFolder;     ///< the font files, by checksum
    std::string lockPath;        ///< held by the session's running agent
    std::string addressPath;     ///< text file: where that one listens
    std::string linkFolder;      ///< active fonts, where every program of the user finds them
    std::string previewFolder;   ///< images of fonts' names, which can be made anew
    std::string logFolder;       ///< logs of the agent and of plug-ins
    std::string launchInfoPath;  ///< tells plug-ins how to start the agent

    /// The outermost folders of ours in the user's, those of other programs of this maker included: what is
    /// in them is nobody else's business.
    std::vector<std::string> ownFolders;

    /// The places that follow from the environment of this process.
    static Locations OfThisUser();

    /// Whether the path is that of an own folder, or below one.
    bool IsOwn(const std::string& path) const;
    /// The address that the running agent wrote down; empty when there is none.
    std::string AgentAddress() const;
};

}  // namespace pellwick

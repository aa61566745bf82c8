#include "HostWorld.h"

// Under Wine each process has a font table of its own, so it is the agent that is asked what the system
// offers.
std::set<std::string> HostWorld::VisibleFonts() const {
    const ProgramResult result = mWorld.Run({"list", "--visible", "--no-start", "--json"});
    std::set<std::string> names;
    if (result.status != 0)
        return names;
    for (const json& font : json::parse(result.output).at("fonts"))
        names.insert(font.at("PostScriptName").get<std::string>());
    return names;
}

#include "HostWorld.h"

// Under Wine each process has a font table of its own, so it is the agent that is asked what the system
// offers.
std::set<std::string> HostWorld::VisibleFonts() const {
    const ProgramResult result = mWorld.Run({"list", "--visible", "--no-start", "--json"});
    const json list = result.status == 0 ? json::parse(result.output) : json{{"fonts", json::array()}};
    std::set<std::string> names;
    for (const json& font : list.at("fonts"))
        names.insert(font.at("PostScriptName").get<std::string>());
    return names;
}

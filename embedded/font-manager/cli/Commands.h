// The commands of the command line. Each returns an exit status or throws Failure.
#pragma once

#include <string>
#include <vector>

#include "cli/Session.h"

namespace pellwick::cli {

ExitStatus AddFonts(Session& session, const std::vector<std::string>& paths, const std::string& workgroup);
ExitStatus RemoveFonts(Session& session, const std::vector<std::string>& names);
/// `isVisible`: those alone that programs are offered.
ExitStatus ListFonts(Session& session, bool isVisible);
ExitStatus ActivateFonts(Session& session, const std::vector<std::string>& names);
ExitStatus DeactivateFonts(Session& session, const std::vector<std::string>& names);

/// Checks records and files, and puts right what can be.
ExitStatus Examine(Session& session);
ExitStatus ShowStatus(Session& session);
ExitStatus LogIn(Session& session, const std::string& name);
ExitStatus LogOut(Session& session);
ExitStatus SetStandalone(Session& session, bool isStandalone);
ExitStatus StopAgent(Session& session);
ExitStatus WriteLaunchInfo(const Options& options);

ExitStatus ListWorkgroups(Session& session);
/// The methods that take a workgroup's name, and for a renaming a new one.
ExitStatus ChangeWorkgroup(Session& session, const char* method, const std::string& name,
                           const std::string& newName = {});

/// A set as the user names it; its workgroup may be left out where one set alone has the name.
struct SetName {
    std::string name;
    std::string workgroup;
};

ExitStatus ListSets(Session& session, const std::string& workgroup);
ExitStatus ShowSet(Session& session, const SetName& name);
ExitStatus CreateSet(Session& session, const SetName& name);
ExitStatus AddToSet(Session& session, const SetName& name, const std::vector<std::string>& fontNames);
ExitStatus DeleteSet(Session& session, const SetName& name);

/// The names of what a smart list takes its fonts from.
struct SmartListParts {
    std::vector<std::string> workgroups;
    std::vector<std::string> sets;
    std::vector<std::string> smartLists;
};

ExitStatus ListSmartLists(Session& session);
ExitStatus ShowSmartList(Session& session, const std::string& name);
ExitStatus CreateSmartList(Session& session, const std::string& name, const SmartListParts& parts);
ExitStatus RenameSmartList(Session& session, const std::string& name, const std::string& newName);
ExitStatus DeleteSmartList(Session& session, const std::string& name);

}  // namespace pellwick::cli

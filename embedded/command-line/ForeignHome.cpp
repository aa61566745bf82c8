#include "ForeignHome.h"

#include "platform/Folders.h"
#include "platform/PrivateFolder.h"

namespace command_line {

std::string RefusalOfForeignHome() {
    using platform::KnownFolder;
    auto& folders = platform::Current<platform::Folders>();
    for (const KnownFolder each :
         {KnownFolder::kLocalApplicationData, KnownFolder::kConfiguration, KnownFolder::kCache}) {
        std::string folder;
        const std::string owner = platform::LockedOutOwner(folders.PathOf(each), folder);
        if (!owner.empty())
            return folder + " belongs to " + owner +
                   ", who could not use what root leaves there; run this as " + owner +
                   ", or give HOME and the XDG variables the values of root";
    }
    return {};
}

}  // namespace command_line

#include "ForeignHome.h"

#include "platform/Folders.h"
#include "platform/PrivateFolder.h"

std::string RefusalOfForeignHome() {
    using platform::KnownFolder;
    auto& folders = platform::Current<platform::Folders>();
    for (const KnownFolder each :
         {KnownFolder::kLocalApplicationData, KnownFolder::kConfiguration, KnownFolder::kCache}) {
        const std::string path = folders.PathOf(each);
        const std::string owner = platform::LockedOutOwner(path);
        if (!owner.empty())
            return path + " belongs to " + owner +
                   ", who could not use what root leaves there; run this as " + owner +
                   ", or give HOME and the XDG variables the values of root";
    }
    return {};
}

#include "activation/ActiveFonts.h"

#include "activation/FontResources.h"
#include "activation/LinkFolder.h"
#include "platform/FontTable.h"

namespace pellwick {

std::unique_ptr<ActiveFonts> MakeActiveFonts(const std::string& linkFolder, const FontVault& vault) {
    if (platform::Current<platform::FontTable>().IsFilledFromFolders())
        return std::make_unique<LinkFolder>(linkFolder, vault);
    return std::make_unique<FontResources>(vault);
}

}  // namespace pellwick

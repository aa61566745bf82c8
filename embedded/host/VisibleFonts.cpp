#include "VisibleFonts.h"

#include <fontconfig/fontconfig.h>

std::set<std::string> RefreshVisibleFonts() {
    std::set<std::string> files;
    FcInitReinitialize();
    for (const FcSetName set : {FcSetSystem, FcSetApplication}) {
        const FcFontSet* fonts = FcConfigGetFonts(nullptr, set);
        for (int index = 0; fonts != nullptr && index < fonts->nfont; ++index) {
            FcChar8* file = nullptr;
            if (FcPatternGetString(fonts->fonts[index], FC_FILE, 0, &file) == FcResultMatch)
                files.insert(reinterpret_cast<const char*>(file));
        }
    }
    return files;
}

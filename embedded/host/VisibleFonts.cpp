#include "VisibleFonts.h"

#include <fontconfig/fontconfig.h>

#include <memory>

std::set<std::string> ReadVisibleFonts() {
    std::set<std::string> files;
    // A configuration of its own looks at the folders as they are now; the shared one may be 30 seconds old.
    const std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)> config(FcInitLoadConfigAndFonts(),
                                                                       FcConfigDestroy);
    if (!config)
        return files;
    for (const FcSetName set : {FcSetSystem, FcSetApplication}) {
        const FcFontSet* fonts = FcConfigGetFonts(config.get(), set);
        for (int index = 0; fonts != nullptr && index < fonts->nfont; ++index) {
            FcChar8* file = nullptr;
            if (FcPatternGetString(fonts->fonts[index], FC_FILE, 0, &file) == FcResultMatch)
                files.insert(reinterpret_cast<const char*>(file));
        }
    }
    return files;
}

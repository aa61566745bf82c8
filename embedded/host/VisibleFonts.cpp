#include "VisibleFonts.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <optional>

#include "platform/DynamicLibrary.h"

namespace {

/// What is needed of fontconfig. It is loaded when it is asked for alone: with all that it brings along it
/// would triple the time that this program takes to start.
struct Fontconfig {
    decltype(&FcInitLoadConfigAndFonts) initLoadConfigAndFonts;
    decltype(&FcConfigGetFonts) configGetFonts;
    decltype(&FcPatternGetString) patternGetString;
    decltype(&FcConfigDestroy) configDestroy;

    static std::optional<Fontconfig> Load() {
        auto& libraries = platform::Current<platform::DynamicLibraries>();
        platform::SystemError error;
        const platform::LibraryHandle library = libraries.LoadByName("libfontconfig.so.1", error);
        Fontconfig functions{};
        const auto bind = [&](auto& function, const char* name) {
            function = library != nullptr ? reinterpret_cast<std::remove_reference_t<decltype(function)>>(
                                                libraries.FindSymbol(library, name))
                                          : nullptr;
            return function != nullptr;
        };
        if (!bind(functions.initLoadConfigAndFonts, "FcInitLoadConfigAndFonts") ||
            !bind(functions.configGetFonts, "FcConfigGetFonts") ||
            !bind(functions.patternGetString, "FcPatternGetString") ||
            !bind(functions.configDestroy, "FcConfigDestroy"))
            return std::nullopt;
        return functions;
    }
};

}  // namespace

std::set<std::string> ReadVisibleFonts() {
    std::set<std::string> files;
    const std::optional<Fontconfig> fontconfig = Fontconfig::Load();
    if (!fontconfig)
        return files;
    // A configuration of its own looks at the folders as they are now; the shared one may be 30 seconds old.
    const std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)> config(fontconfig->initLoadConfigAndFonts(),
                                                                       fontconfig->configDestroy);
    if (!config)
        return files;
    for (const FcSetName set : {FcSetSystem, FcSetApplication}) {
        const FcFontSet* fonts = fontconfig->configGetFonts(config.get(), set);
        for (int index = 0; fonts != nullptr && index < fonts->nfont; ++index) {
            FcChar8* file = nullptr;
            if (fontconfig->patternGetString(fonts->fonts[index], FC_FILE, 0, &file) == FcResultMatch)
                files.insert(reinterpret_cast<const char*>(file));
        }
    }
    return files;
}

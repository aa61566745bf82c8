#include "platform/FontTable.h"

#include <fontconfig/fontconfig.h>

#include <memory>
#include <optional>
#include <type_traits>

#include "platform/DynamicLibrary.h"

namespace platform {
namespace {

/// What is needed of fontconfig. It is loaded when it is asked for alone: with all that it brings along it
/// would triple the time that a small program takes to start.
struct Fontconfig {
    decltype(&FcInitLoadConfigAndFonts) initLoadConfigAndFonts;
    decltype(&FcConfigGetFonts) configGetFonts;
    decltype(&FcPatternGetString) patternGetString;
    decltype(&FcConfigDestroy) configDestroy;

    static std::optional<Fontconfig> Load() {
        auto& libraries = Current<DynamicLibraries>();
        SystemError error;
        const LibraryHandle library = libraries.LoadByName("libfontconfig.so.1", error);
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

class LinuxFontTable : public FontTable {
public:
    bool IsFilledFromFolders() override { return true; }
    bool Add(const std::string&) override { return false; }
    bool Remove(const std::string&) override { return false; }
    void AnnounceChange() override {}

    /// None where fontconfig is not installed.
    VisibleFonts Visible() override {
        VisibleFonts visible;
        const std::optional<Fontconfig> fontconfig = Fontconfig::Load();
        if (!fontconfig)
            return visible;
        // A configuration of its own looks at the folders as they are now; the shared one may be 30 seconds
        // old.
        const std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)> config(
            fontconfig->initLoadConfigAndFonts(), fontconfig->configDestroy);
        if (!config)
            return visible;
        for (const FcSetName set : {FcSetSystem, FcSetApplication}) {
            const FcFontSet* fonts = fontconfig->configGetFonts(config.get(), set);
            for (int index = 0; fonts != nullptr && index < fonts->nfont; ++index) {
                FcChar8* file = nullptr;
                if (fontconfig->patternGetString(fonts->fonts[index], FC_FILE, 0, &file) == FcResultMatch)
                    visible.files.insert(reinterpret_cast<const char*>(file));
            }
        }
        return visible;
    }
};

}  // namespace

template <>
FontTable& SystemDefault<FontTable>() {
    static LinuxFontTable table;
    return table;
}

}  // namespace platform

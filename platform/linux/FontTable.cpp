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
    decltype(&FcConfigGetFontDirs) configGetFontDirs;
    decltype(&FcConfigGetConfigDirs) configGetConfigDirs;
    decltype(&FcStrListNext) strListNext;
    decltype(&FcStrListDone) strListDone;
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
            !bind(functions.configGetFontDirs, "FcConfigGetFontDirs") ||
            !bind(functions.configGetConfigDirs, "FcConfigGetConfigDirs") ||
            !bind(functions.strListNext, "FcStrListNext") || !bind(functions.strListDone, "FcStrListDone") ||
            !bind(functions.patternGetString, "FcPatternGetString") ||
            !bind(functions.configDestroy, "FcConfigDestroy"))
            return std::nullopt;
        return functions;
    }
};

/// What fontconfig finds now. A configuration of its own looks at the folders as they are; the one that a
/// process shares may be 30 seconds old.
class FontconfigSurvey {
public:
    FontconfigSurvey() : mFontconfig(Fontconfig::Load()) {
        if (mFontconfig)
            mConfig = {mFontconfig->initLoadConfigAndFonts(), mFontconfig->configDestroy};
    }

    /// False where fontconfig is not installed, or has nothing to go by.
    bool IsThere() const { return mConfig != nullptr; }

    /// A collection stands there once.
    std::set<std::string> Files() const {
        std::set<std::string> files;
        for (const FcSetName set : {FcSetSystem, FcSetApplication}) {
            const FcFontSet* fonts = mFontconfig->configGetFonts(mConfig.get(), set);
            for (int index = 0; fonts != nullptr && index < fonts->nfont; ++index) {
                FcChar8* file = nullptr;
                if (mFontconfig->patternGetString(fonts->fonts[index], FC_FILE, 0, &file) == FcResultMatch)
                    files.insert(reinterpret_cast<const char*>(file));
            }
        }
        return files;
    }

    /// Those of the configuration, and all below them.
    std::set<std::string> Folders() const {
        std::set<std::string> folders;
        for (const auto list : {mFontconfig->configGetConfigDirs, mFontconfig->configGetFontDirs}) {
            const std::unique_ptr<FcStrList, decltype(&FcStrListDone)> names(list(mConfig.get()),
                                                                             mFontconfig->strListDone);
            while (const FcChar8* name = names ? mFontconfig->strListNext(names.get()) : nullptr)
                folders.insert(reinterpret_cast<const char*>(name));
        }
        return folders;
    }

private:
    const std::optional<Fontconfig> mFontconfig;
    std::unique_ptr<FcConfig, decltype(&FcConfigDestroy)> mConfig{nullptr, nullptr};
};

class LinuxFontTable : public FontTable {
public:
    bool IsFilledFromFolders() override { return true; }
    bool Add(const std::string&) override { return false; }
    bool Remove(const std::string&) override { return false; }
    std::map<std::string, int> Added() override { return {}; }
    void AnnounceChange() override {}

    VisibleFonts Visible() override {
        const FontconfigSurvey survey;
        return survey.IsThere() ? VisibleFonts{survey.Files(), {}} : VisibleFonts();
    }
};

}  // namespace

template <>
FontTable& SystemDefault<FontTable>() {
    static LinuxFontTable table;
    return table;
}

std::optional<InstalledFonts> FindInstalledFonts() {
    const FontconfigSurvey survey;
    if (!survey.IsThere())
        return std::nullopt;
    const std::set<std::string> files = survey.Files();
    const std::set<std::string> folders = survey.Folders();
    return InstalledFonts{{files.begin(), files.end()}, {folders.begin(), folders.end()}};
}

std::string WhyNeverShown(std::string_view) {
    return {};
}

}  // namespace platform

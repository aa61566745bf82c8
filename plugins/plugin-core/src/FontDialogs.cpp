#include "FontDialogs.h"

#include <CoreFoundation++/CFRef.h>

#include "CallScopes.h"
#include "FontListJSON.h"
#include "FontManagerInterface.h"
#include "MarquellGlobals.h"
#include "TextBuffer.h"

namespace {

/// Null without the framework's library, too: nobody would see the dialog.
VPFInterface* FrameworkWithDialogs() {
    VPFInterface* framework = MarquellGlobals::GetSharedVPFInterface();
    return framework->Framework() != nullptr ? framework : nullptr;
}

/// Whether fonts may be shown for which there is perhaps nothing to choose.
bool MayShowFontsWithoutReplacements() {
    CoreAgentInterface* agent = FontManagerInterface::GetSharedInstance().GetFontManager();
    return agent != nullptr && agent->canShowPostscriptReplacements();
}

void LogSkippedFonts(CFArrayRef fonts) {
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        const std::string name = cf::GetString(font, kGS_PostScriptNameKey);
        LogMessage(0, "This font was skipped:  '%s' -- host app's Find Fonts dialog will be displayed",
                   name.c_str());
    }
}

/// What became of the fonts of a list: each is in one of the two.
struct SortedFonts {
    CFRef<CFMutableArrayRef> resolved = cf::MutableArray();
    CFRef<CFMutableArrayRef> skipped = cf::MutableArray();
};

/// Fonts that the user may not be shown are skipped unseen.
ErrorCode ResolveFonts(const char* caller, bool onlyIfResolvable, CFArrayRef fonts,
                       const SortedFonts& sorted) {
    if (onlyIfResolvable || MayShowFontsWithoutReplacements())
        return FontDialogs::ShowResolveFonts(caller, fonts, sorted.resolved.get(), sorted.skipped.get());
    CFArrayAppendArray(sorted.skipped.get(), fonts, CFRangeMake(0, CFArrayGetCount(fonts)));
    return CoreErrorCodes::kSuccess;
}

}  // namespace

namespace FontDialogs {

CFIndex CountResolvable(CFArrayRef fonts) {
    CFIndex count = 0;
    for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts)) {
        if (cf::Count(cf::GetDictionary(font, kGS_PossibleReplacementsKey)) > 0)
            ++count;
    }
    return count;
}

ErrorCode ShowResolveFonts(const char* caller, CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                           CFMutableArrayRef skippedFonts) {
    static Turn showing;
    const DialogTurn turn(showing, caller);
    VPFInterface* framework = FrameworkWithDialogs();
    if (!turn || framework == nullptr)
        return CoreErrorCodes::kUnknownError;
    framework->ShowResolveFonts(fonts, resolvedFonts, skippedFonts);  // unconfirmed, it skips every font
    return CoreErrorCodes::kSuccess;
}

ErrorCode InvokeResolveDialog(bool onlyIfResolvable, const std::string& fontsJSON, char* resultBuffer,
                              size_t* resultSize, char* skippedBuffer, size_t* skippedSize) {
    constexpr char kName[] = "PluginCoreInterface::InvokeResolveDialog";
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName,
                           fontsJSON.c_str());
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (AppendFontsFromJSON(fontsJSON, FontListForm::kArray, fonts.get()) != CoreErrorCodes::kSuccess)
        return result = CoreErrorCodes::kInvalidParam;
    if (CountResolvable(fonts.get()) == 0)
        LogMessage(0, "WARNING: nothing to resolve in %s", kName);
    if (cf::Count(fonts.get()) == 0)
        return result = CoreErrorCodes::kInvalidParam;
    if (onlyIfResolvable && CountResolvable(fonts.get()) == 0)
        return result = CoreErrorCodes::kNotFound;
    const SortedFonts sorted;
    result = ResolveFonts(kName, onlyIfResolvable, fonts.get(), sorted);
    if (result != CoreErrorCodes::kSuccess)
        return result;
    LogSkippedFonts(sorted.skipped.get());
    result = CopyFontsToBuffer(sorted.resolved.get(), resultBuffer, resultSize);
    if (result == CoreErrorCodes::kSuccess)
        result = CopyFontsToBuffer(sorted.skipped.get(), skippedBuffer, skippedSize);
    return result;
}

ErrorCode InvokeRestrictedFontsDialog(bool onlyNew, const std::string& fontsJSON) {
    constexpr char kName[] = "PluginCoreInterface::InvokeRestrictedFontsDialog";
    static Turn showing;
    ErrorCode result = CoreErrorCodes::kUnknownError;
    const TraceScope trace(ExitingWithResult(kName, result), "Entering %s('%s', ...)", kName,
                           fontsJSON.c_str());
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    if (AppendFontsFromJSON(fontsJSON, FontListForm::kArray, fonts.get()) != CoreErrorCodes::kSuccess)
        return result = CoreErrorCodes::kInvalidParam;
    if (cf::Count(fonts.get()) == 0) {
        LogMessage(0, "WARNING: nothing to warn about in %s", kName);
        return result = CoreErrorCodes::kSuccess;
    }
    const DialogTurn turn(showing, kName);
    VPFInterface* framework = FrameworkWithDialogs();
    if (!turn || framework == nullptr)
        return result;
    framework->ShowRestrictedFonts(fonts.get(), onlyNew);
    return result = CoreErrorCodes::kSuccess;
}

}  // namespace FontDialogs

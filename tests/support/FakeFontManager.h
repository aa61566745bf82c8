// A font manager for the tracker that matches what it is told to and notes what it is asked to deactivate.
#pragma once

#include <functional>

#include "FontManagerAccess.h"
#include "FontRecordKeys.h"
#include "Records.h"

class FakeFontManager : public FontManagerAccess {
public:
    FakeFontManager() { SetFontManagerAccess(this); }
    ~FakeFontManager() override { SetFontManagerAccess(nullptr); }

    bool isRunning = true;
    bool isBatchMode = true;
    CFRef<CFMutableArrayRef> matched = cf::MutableArray();  ///< what the next activation matches
    PluginActivationStates states;
    std::map<uint32_t, int16_t> statusOfSingleDeactivation;  ///< by database ID; 0 for others
    ErrorCode activationStatus = 0;
    std::vector<uint32_t> deactivated;  ///< database IDs, in the order of the requests
    std::function<void()> whileDeactivating;

    /// One font that the next activation matches; owned by `matched`.
    CFMutableDictionaryRef Match(uint32_t databaseID, const std::string& name,
                                 std::optional<int> stateBefore = 0) {
        const auto font = Record(kGS_DatabaseIDKey, databaseID, kGS_PostScriptNameKey, name);
        if (stateBefore)
            cf::Set(font, kGS_ActivationStateKey, *stateBefore);
        cf::Append(matched, font);
        return font.get();
    }

    bool IsRunning() override { return isRunning; }
    bool IsBatchMode() override { return isBatchMode; }
    bool IsLoggedIn() override { return true; }
    ErrorCode ActivateDocumentFonts(const std::string&, const DocumentFontLists& lists) override {
        return GiveMatched(lists.matchedFonts);
    }
    ErrorCode ActivateFontsByID(CFArrayRef, const std::string&, CFMutableArrayRef matchedFonts) override {
        return GiveMatched(matchedFonts);
    }
    PluginActivationStates GetPluginActivationStates(const std::vector<uint32_t>&) override { return states; }
    int16_t XTDeactivateFont(CFDictionaryRef font, uint64_t) override {
        const auto databaseID = static_cast<uint32_t>(*cf::GetInt64(font, kGS_DatabaseIDKey));
        deactivated.push_back(databaseID);
        return statusOfSingleDeactivation[databaseID];
    }
    ErrorCode DeactivateFonts(CFArrayRef fonts, uint64_t, CFMutableArrayRef deactivatedFonts) override {
        if (whileDeactivating)
            whileDeactivating();
        for (CFIndex index = 0; index < cf::Count(fonts); ++index) {
            const auto font = cf::Get<CFDictionaryRef>(fonts, index);
            deactivated.push_back(static_cast<uint32_t>(*cf::GetInt64(font, kGS_DatabaseIDKey)));
            if (deactivatedFonts != nullptr)
                cf::Append(deactivatedFonts, font);
        }
        return 0;
    }
    bool SaveDocumentFonts(const std::string&, bool, CFStringRef) override { return true; }

private:
    ErrorCode GiveMatched(CFMutableArrayRef matchedFonts) {
        CFArrayAppendArray(matchedFonts, matched.get(), CFRangeMake(0, cf::Count(matched.get())));
        matched = cf::MutableArray();
        return activationStatus;
    }
};

class FakePreferences : public PreferenceAccess {
public:
    std::map<std::string, bool> values;
    bool GetBoolPreference(const char* key) override { return values[key]; }
};

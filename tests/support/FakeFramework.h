// A plug-in framework that keeps preferences in memory and answers questions as a test says.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <array>
#include <deque>
#include <functional>
#include <map>

#include "FontRecordKeys.h"
#include "VantorixPluginFramework.h"

class FakeFramework final : public VantorixPluginFramework {
public:
    std::map<std::string, int64_t> numbers;
    std::map<std::string, std::string> texts;
    std::vector<std::pair<uint32_t, uint32_t>> shownBoxes;  ///< title and text
    std::deque<int32_t> answers;                            ///< to questions; "no" when there is none left
    bool areDefaultsRegistered = false;
    CFRef<CFDictionaryRef> registeredDefaults;
    bool isStoreUsable = true;
    bool isReleased = false;
    void* parentWindow = nullptr;
    std::vector<std::string> shownDialogs;         ///< by name, in order
    std::vector<std::string> subjects;             ///< of messages about something
    std::vector<std::array<int64_t, 3>> progress;  ///< title, done, total
    int stepsUntilStopped = 0;                     ///< the progress call that asks to stop; 0 for none
    std::optional<int32_t> chosenWorkgroup;        ///< nothing: the dialog is not confirmed
    std::function<void()> whileDialogShows;        ///< called from within a dialog
    CFRef<CFDictionaryRef> commandBoxState;
    std::optional<int32_t> chosenCommand;
    /// Names of candidates by the names of the fonts that they replace.
    using Replacements = std::map<std::string, std::string>;
    std::optional<Replacements> replacements;  ///< nothing: the dialog is not confirmed
    std::vector<bool> onlyNewFlags;            ///< of the warnings of restricted fonts
    std::string initialFolder;
    std::optional<std::string> chosenFolder;

    void Release() override { isReleased = true; }
    bool GetBoolPreference(const char* key) override { return numbers[key] != 0; }
    int64_t GetIntPreference(const char* key) override { return numbers[key]; }
    CFStringRef CopyStringPreference(const char* key) override { return cf::String(texts[key]).release(); }
    bool SetBoolPreference(const char* key, bool value) override { return SetIntPreference(key, value); }
    bool SetIntPreference(const char* key, int64_t value) override {
        if (isStoreUsable)
            numbers[key] = value;
        return isStoreUsable;
    }
    bool SetStringPreference(const char* key, CFStringRef value) override {
        if (isStoreUsable)
            texts[key] = cf::ToUtf8(value);
        return isStoreUsable;
    }
    bool AreDefaultsRegistered() override { return areDefaultsRegistered; }
    bool RegisterDefaults(CFDictionaryRef defaults) override {
        registeredDefaults = RetainCF(defaults);
        return areDefaultsRegistered = true;
    }
    bool IsPreferenceStoreUsable() override { return isStoreUsable; }
    CFStringRef CopyLocalizedString(uint32_t stringID) override {
        return cf::String("string " + std::to_string(stringID)).release();
    }
    void SetParentWindowForUi(void* window) override { parentWindow = window; }
    int32_t ShowMessageBox(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons) override {
        shownBoxes.emplace_back(titleID, textID);
        if (whileDialogShows)
            whileDialogShows();
        if (buttons == MessageBoxButtons::kOk)
            return 1;
        const int32_t answer = answers.empty() ? 2 : answers.front();
        if (!answers.empty())
            answers.pop_front();
        return answer;
    }
    void ShowMessageAbout(uint32_t titleID, uint32_t textID, CFStringRef subject) override {
        shownBoxes.emplace_back(titleID, textID);
        subjects.push_back(cf::ToUtf8(subject));
    }
    bool ShowProgress(uint32_t titleID, int32_t done, int32_t total) override {
        progress.push_back({titleID, done, total});
        return --stepsUntilStopped != 0;
    }
    bool ShowAbout() override { return Note("About"); }
    bool ShowPreferences() override { return Note("Preferences"); }
    bool ShowSelectWorkgroup(CFArrayRef, int32_t* workgroupID) override {
        *workgroupID = chosenWorkgroup.value_or(*workgroupID);
        return Note("SelectWorkgroup") && chosenWorkgroup.has_value();
    }
    bool ShowCommandBox(CFDictionaryRef state, int32_t* command) override {
        commandBoxState = RetainCF(state);
        *command = chosenCommand.value_or(*command);
        return Note("CommandBox") && chosenCommand.has_value();
    }
    bool ShowResolveFonts(CFArrayRef fonts, CFMutableArrayRef resolvedFonts,
                          CFMutableArrayRef skippedFonts) override {
        for (CFIndex index = 0; index < cf::Count(fonts); ++index)
            SortOut(cf::Get<CFDictionaryRef>(fonts, index), resolvedFonts, skippedFonts);
        return Note("ResolveFonts") && replacements.has_value();
    }
    bool ShowRestrictedFonts(CFArrayRef, bool onlyNew) override {
        onlyNewFlags.push_back(onlyNew);
        return Note("RestrictedFonts");
    }
    bool ShowChooseFolder(CFStringRef, CFStringRef folder, CFStringRef* outNewFolder) override {
        initialFolder = cf::ToUtf8(folder);
        Note("ChooseFolder");
        if (chosenFolder)
            *outNewFolder = cf::String(*chosenFolder).release();
        return chosenFolder.has_value();
    }

private:
    void SortOut(CFDictionaryRef font, CFMutableArrayRef resolvedFonts, CFMutableArrayRef skippedFonts) {
        const std::string name = cf::GetString(font, kGS_PostScriptNameKey);
        if (!replacements || !replacements->contains(name)) {
            cf::Append(skippedFonts, font);
            return;
        }
        const auto resolved = AdoptCF(CFDictionaryCreateMutableCopy(kCFAllocatorDefault, 0, font));
        const auto candidates = cf::GetDictionary(font, kGS_PossibleReplacementsKey);
        cf::Set(resolved, kGS_MatchedFontKey, cf::GetDictionary(candidates, replacements->at(name)));
        cf::Append(resolvedFonts, resolved);
    }
    bool Note(const char* dialog) {
        shownDialogs.emplace_back(dialog);
        if (whileDialogShows)
            whileDialogShows();
        return true;
    }
};

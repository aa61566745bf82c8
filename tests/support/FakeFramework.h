// A plug-in framework that keeps preferences in memory and answers questions as a test says.
#pragma once

#include <CoreFoundation++/CFRef.h>

#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "VantorixPluginFramework.h"

class FakeFramework final : public VantorixPluginFramework {
public:
    std::map<std::string, int64_t> numbers;
    std::map<std::string, std::string> texts;
    std::vector<std::pair<uint32_t, uint32_t>> shownBoxes;  ///< title and text
    std::deque<int32_t> answers;                            ///< to questions; "no" when there is none left
    bool areDefaultsRegistered = false;
    bool isReleased = false;

    void Release() override { isReleased = true; }
    bool GetBoolPreference(const char* key) override { return numbers[key] != 0; }
    int64_t GetIntPreference(const char* key) override { return numbers[key]; }
    CFStringRef CopyStringPreference(const char* key) override { return cf::String(texts[key]).release(); }
    bool SetBoolPreference(const char* key, bool value) override {
        numbers[key] = value;
        return true;
    }
    bool SetIntPreference(const char* key, int64_t value) override {
        numbers[key] = value;
        return true;
    }
    bool SetStringPreference(const char* key, CFStringRef value) override {
        texts[key] = cf::ToUtf8(value);
        return true;
    }
    bool AreDefaultsRegistered() override { return areDefaultsRegistered; }
    bool RegisterDefaults(CFDictionaryRef defaults) override {
        areDefaultsRegistered = true;
        CFDictionaryApplyFunction(
            defaults,
            [](const void* key, const void* value, void* self) {
                static_cast<FakeFramework*>(self)->numbers.emplace(
                    cf::ToUtf8(static_cast<CFStringRef>(key)),
                    cf::ToInt64(static_cast<CFTypeRef>(value)).value_or(-1));
            },
            this);
        return true;
    }
    bool IsPreferenceStoreUsable() override { return true; }
    CFStringRef CopyLocalizedString(uint32_t stringID) override {
        return cf::String("string " + std::to_string(stringID)).release();
    }
    void SetParentWindowForUi(void*) override {}
    int32_t ShowMessageBox(uint32_t titleID, uint32_t textID, MessageBoxButtons buttons) override {
        shownBoxes.emplace_back(titleID, textID);
        if (buttons == MessageBoxButtons::kOk)
            return 1;
        const int32_t answer = answers.empty() ? 2 : answers.front();
        if (!answers.empty())
            answers.pop_front();
        return answer;
    }
    bool ShowAbout() override { return false; }
    bool ShowPreferences() override { return false; }
    bool ShowSelectWorkgroup(CFArrayRef, int32_t*) override { return false; }
    bool ShowCommandBox(CFDictionaryRef, int32_t*) override { return false; }
    bool ShowResolveFonts(CFArrayRef, CFMutableArrayRef, CFMutableArrayRef) override { return false; }
    bool ShowRestrictedFonts(CFArrayRef, bool) override { return false; }
};

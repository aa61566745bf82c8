// What the trace log and the failure reports write while this object lives.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>

#include "platform/DebugOutput.h"

class CapturedTrace : public platform::DebugOutput {
public:
    bool isListening = true;

    void Write(const char* text) noexcept override {
        const std::lock_guard guard(mTextLock);
        mText += text;
    }
    bool IsListening() noexcept override { return isListening; }

    std::string Text() {
        const std::lock_guard guard(mTextLock);
        return mText;
    }
    size_t LineCount() {
        const std::string text = Text();
        return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
    }
    void Clear() {
        const std::lock_guard guard(mTextLock);
        mText.clear();
    }

private:
    std::mutex mTextLock;
    std::string mText;
    platform::ScopedOverride<platform::DebugOutput> mOverride{*this};
};

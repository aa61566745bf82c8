// The client library in a world whose agent comes and goes, and what it reports meanwhile.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

/// What the callbacks were told, in order: the type, and the font ID or the kind of server where there is
/// one.
struct Notes {
    using Note = std::pair<int32_t, int64_t>;

    std::mutex notesLock;
    std::vector<Note> received;

    void Clear() {
        const std::lock_guard guard(notesLock);
        received.clear();
    }
    void Add(int32_t type, const void* data) {
        const std::lock_guard guard(notesLock);
        int64_t about = 0;
        if (type == kPluginCallback_FontActivated || type == kPluginCallback_FontDeactivated ||
            type == kPluginCallback_FontMissing)
            about = *static_cast<const uint32_t*>(data);
        if (type == kPluginCallback_LoggedIn)
            about = cf::GetInt64(cf::As<CFDictionaryRef>(data), "serverType").value_or(-1);
        if (type == kPluginCallback_GoogleWebFontsEnabled)
            about = *static_cast<const bool*>(data);
        received.emplace_back(type, about);
    }
    bool Has(int32_t type) {
        const std::lock_guard guard(notesLock);
        return std::find(received.begin(), received.end(), Note(type, 0)) != received.end();
    }
};
inline Notes notes;

/// A callback for notifications.
inline void Note(int32_t type, const void* data) {
    notes.Add(type, data);
}

class RecoveryTest : public testing::Test {
protected:
    void SetUp() override {
        notes.Clear();
        mWorld.StartAgent();
        mWorld.WriteFont("Sample-Bold");
        mWorld.WriteFont("Sample-Italic");
        mWorld.RunForJson({"add", mWorld.Path("fonts")});
    }
    void TearDown() override { mLibrary.CleanUpOnShutdown(); }

    ErrorCode AskWhetherLoggedIn() {
        bool isLoggedIn = false;
        return mLibrary.GetIsLoggedIn(mLibrary.Facade(), &isLoggedIn);
    }

    TestWorld mWorld;
    TestLibrary mLibrary;
};

}  // namespace pellwick::test

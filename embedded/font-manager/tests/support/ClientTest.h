// The client library in a user's world with an agent and three fonts, and what its callbacks are told.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <mutex>
#include <nlohmann/json.hpp>

#include "JSONConversion.h"
#include "common/Locations.h"
#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {

inline Json JsonOf(CFTypeRef object) {
    return JSONFromCF(object, 16, WholeNumbers::kAsIntegers);
}
template <class T>
Json JsonOf(const CFRef<T>& object) {
    return JsonOf(object.get());
}

/// An object for the argument where the library takes one, for as long as the call lasts.
template <class T>
auto Lend(const T& argument) {
    if constexpr (std::same_as<T, std::nullptr_t>)
        return argument;
    else if constexpr (std::convertible_to<T, IDs>)
        return cf::NumberArray(argument);
    else if constexpr (std::convertible_to<T, std::string>)
        return cf::String(argument);
    else
        return argument;
}
template <class T>
auto Lent(const T& argument) {
    if constexpr (requires { argument.get(); })
        return argument.get();
    else
        return argument;
}

/// What the callbacks were told, in order: the type, and the font's ID, the kind of server or the number of
/// previews where there is one.
struct Notes {
    using Note = std::pair<int32_t, int64_t>;

    std::mutex notesLock;
    std::vector<Note> received;

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
        if (type == kPluginCallback_PreviewPNGsRendered)
            about = cf::Count(cf::As<CFDictionaryRef>(data));
        received.emplace_back(type, about);
    }
    bool Has(int32_t type) {
        const std::lock_guard guard(notesLock);
        return std::find(received.begin(), received.end(), Note(type, 0)) != received.end();
    }
};
inline Notes notes;

inline void Note(int32_t type, const void* data) {
    notes.Add(type, data);
}
inline bool IsNoted(int32_t type) {
    return Eventually([type] { return notes.Has(type); });
}

/// What calls have come to, and what they should.
inline void ExpectCodes(const std::vector<std::pair<ErrorCode, ErrorCode>>& answers) {
    for (size_t index = 0; index < answers.size(); ++index)
        EXPECT_EQ(answers[index].first, answers[index].second) << index;
}

class ClientTest : public testing::Test, protected TestLibrary {
protected:
    // Fonts, and the workgroups of a fresh machine.
    static constexpr int64_t kBold = 1;
    static constexpr int64_t kItalic = 2;
    static constexpr int64_t kOther = 3;
    static constexpr int32_t kLibraryID = 1;
    static constexpr int32_t kSystemID = 2;

    ClientTest() {
        notes.received.clear();
        ResetPluginFacadeInstance();  // an earlier test may have left one without an agent
        mWorld.StartAgent();
        mWorld.RunForJson({"add", mWorld.WriteFont("Sample-Bold"), mWorld.WriteFont("Sample-Italic"),
                           mWorld.WriteFont("Other-Regular")});
    }
    ~ClientTest() override { CleanUpOnShutdown(); }

    template <class Function, class... Arguments>
    ErrorCode Ask(Function function, const Arguments&... arguments) {
        return function(Facade(), Lent(Lend(arguments))...);
    }
    /// What a function that succeeds gives through its last argument.
    template <class T, class Function, class... Arguments>
    T Told(Function function, const Arguments&... arguments) {
        T value{};
        EXPECT_EQ(Ask(function, arguments..., &value), 0u);
        return value;
    }
    /// The same, for an object that is the caller's.
    template <class T, class Function, class... Arguments>
    Json Given(Function function, const Arguments&... arguments) {
        return JsonOf(AdoptCF(Told<T>(function, arguments...)));
    }
    /// What a function that succeeds appends to its last argument.
    template <class Function, class... Arguments>
    Json Filled(Function function, const Arguments&... arguments) {
        const auto array = cf::MutableArray();
        EXPECT_EQ(Ask(function, arguments..., array.get()), 0u);
        return JsonOf(array);
    }

    ErrorCode AskWhetherLoggedIn() {
        bool isLoggedIn = false;
        return Ask(GetIsLoggedIn, &isLoggedIn);
    }
    void Listen() { ASSERT_EQ(Ask(RegisterForNotifications, Note), 0u); }

    TestWorld mWorld;
};

}  // namespace pellwick::test

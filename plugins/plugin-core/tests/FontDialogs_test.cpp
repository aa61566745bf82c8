#include "FontDialogs.h"

#include <nlohmann/json.hpp>

#include "FakeWorld.h"
#include "PluginCoreInterface.h"

using nlohmann::json;
using testing::ElementsAre, testing::HasSubstr;

namespace {

const json kCandidate = {{"PostScriptName", "Serifa-Roman"}, {"DatabaseID", 12}};
const json kResolvable = {{"PostScriptName", "Serifa"},
                          {"PossibleReplacements", {{"Serifa-Roman", kCandidate}}}};
const json kLost = {{"PostScriptName", "Lost"}, {"PossibleReplacements", json::object()}};
const std::string kBoth = json::array({kLost, kResolvable}).dump();
const std::string kOnlyLost = json::array({kLost}).dump();

class FontDialogsTest : public FakeWorld {
protected:
    FontDialogsTest() {
        MakeFunctional();
        library.permissions = {kPermission_ShowPostscriptReplacements};
    }
    ErrorCode Resolve(bool onlyIfResolvable, const std::string& fonts) {
        resolved.assign(resolvedSize, 'r');
        skipped.assign(skippedSize, 's');
        return FontDialogs::InvokeResolveDialog(onlyIfResolvable, fonts, resolved.data(), &resolvedSize,
                                                skipped.data(), &skippedSize);
    }
    static json Parsed(const std::string& buffer) { return json::parse(buffer.c_str()); }
    size_t resolvedSize = 4096;
    size_t skippedSize = 4096;
    std::string resolved;
    std::string skipped;
};

}  // namespace

TEST_F(FontDialogsTest, TheDialogShowsWhenThereIsSomethingToShowAndItIsPermitted) {
    // Only if resolvable, the fonts, whether it is permitted; what comes of it, and whether the dialog shows.
    const std::tuple<bool, std::string, bool, ErrorCode, bool> cases[] = {
        {false, "[{", true, CoreErrorCodes::kInvalidParam, false},
        {false, R"({"DocumentFonts":[{}]})", true, CoreErrorCodes::kInvalidParam, false},
        {false, "[]", true, CoreErrorCodes::kInvalidParam, false},
        {true, kBoth, false, 0, true},  // that they can be resolved is all that it takes
        {true, kOnlyLost, true, CoreErrorCodes::kNotFound, false},
        {false, kOnlyLost, true, 0, true},
        {false, kOnlyLost, false, 0, false},
        {false, kBoth, false, 0, false},
    };
    for (const auto& [onlyIfResolvable, fonts, isPermitted, result, shows] : cases) {
        SCOPED_TRACE(fonts);
        framework.shownDialogs.clear();
        library.permissions = {isPermitted ? kPermission_ShowPostscriptReplacements : -1};
        EXPECT_EQ(Resolve(onlyIfResolvable, fonts), result);
        EXPECT_EQ(!framework.shownDialogs.empty(), shows);
        EXPECT_STREQ(resolved.substr(0, 2).c_str(), result == 0 ? "[]" : "rr");
        if (result == 0)
            EXPECT_EQ(Parsed(skipped), json::parse(fonts)) << "no font is lost";
        else
            EXPECT_EQ(skipped.front(), 's');
    }
    for (const char* name : {"Lost", "Serifa"})
        EXPECT_THAT(trace.Text(), HasSubstr(" This font was skipped:  '" + std::string(name) +
                                            "' -- host app's Find Fonts dialog will be displayed\n"));
}

TEST_F(FontDialogsTest, TheSecondBufferWaitsForTheFirst) {
    EXPECT_EQ(Resolve(true, kBoth), 0u);
    const size_t skippedLength = std::string(skipped.c_str()).size();
    resolvedSize = 2;
    EXPECT_EQ(Resolve(true, kBoth), CoreErrorCodes::kIndexOutOfRange);
    EXPECT_EQ(skippedSize, 4096u);
    EXPECT_EQ(skipped.front(), 's');
    for (const size_t room : {0, 1}) {
        resolvedSize = 3;
        skippedSize = skippedLength + room;
        EXPECT_EQ(Resolve(true, kBoth), room == 1 ? 0 : CoreErrorCodes::kIndexOutOfRange);
        EXPECT_STREQ(resolved.c_str(), "[]");
    }
}

TEST_F(FontDialogsTest, BehindADialogItIsNotShownAgain) {
    std::vector<ErrorCode> inner;
    framework.whileDialogShows = [&] {
        char text[4096];
        size_t size = sizeof text;
        inner.push_back(InvokeResolveDialog(true, kBoth.c_str(), text, &size, text, &size));
    };
    for (const bool onlyIfResolvable : {true, false})
        EXPECT_EQ(Resolve(onlyIfResolvable, kBoth), 0u);
    framework.whileDialogShows = [&] { inner.push_back(InvokeRestrictedFontsDialog(true, kBoth.c_str())); };
    EXPECT_EQ(FontDialogs::InvokeRestrictedFontsDialog(false, kBoth), 0u);
    EXPECT_EQ(inner, std::vector<ErrorCode>(3, PLUGINCORE_UNKNOWN_ERROR));
    EXPECT_THAT(framework.shownDialogs, ElementsAre("ResolveFonts", "ResolveFonts", "RestrictedFonts"));
}

TEST_F(FontDialogsTest, RestrictedFontsAreShownUnlessThereAreNone) {
    EXPECT_EQ(FontDialogs::InvokeRestrictedFontsDialog(true, kOnlyLost), 0u);
    EXPECT_EQ(FontDialogs::InvokeRestrictedFontsDialog(false, kOnlyLost), 0u);
    EXPECT_THAT(framework.onlyNewFlags, ElementsAre(true, false));
    EXPECT_EQ(FontDialogs::InvokeRestrictedFontsDialog(true, "[]"), 0u);
    for (const char* wrong : {"", "[", "{}", "null"})
        EXPECT_EQ(FontDialogs::InvokeRestrictedFontsDialog(true, wrong), CoreErrorCodes::kInvalidParam);
    EXPECT_EQ(framework.onlyNewFlags.size(), 2u);
}

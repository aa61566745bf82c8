#include "FontDialogs.h"

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "FakeWorld.h"
#include "PluginCoreInterface.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace {

const json kCandidate = {{"PostScriptName", "Serifa-Roman"}, {"DatabaseID", 12}};
const json kResolvable = {{"PostScriptName", "Serifa"},
                          {"PossibleReplacements", {{"Serifa-Roman", kCandidate}}}};
const json kLost = {{"PostScriptName", "Lost"}, {"PossibleReplacements", json::object()}};
const std::string kBoth = json{kLost, kResolvable}.dump();
const std::string kOnlyLost = json{kLost}.dump();

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
    static json NamesIn(const std::string& buffer) {
        json names = json::array();
        for (const json& font : Parsed(buffer))
            names.push_back(font["PostScriptName"]);
        return names;
    }

    size_t resolvedSize = 4096;
    size_t skippedSize = 4096;
    std::string resolved;
    std::string skipped;
};

}  // namespace

TEST_F(FontDialogsTest, TheDialogShowsWhenThereIsSomethingToShowAndItIsPermitted) {
    struct Case {
        const char* name;
        bool onlyIfResolvable;
        std::string fonts;
        bool isPermitted;
        ErrorCode result;
        bool shows;
    };
    const Case cases[] = {
        {"no JSON", false, "[{", true, CoreErrorCodes::kInvalidParam, false},
        {"no text", true, "", true, CoreErrorCodes::kInvalidParam, false},
        {"null", false, "null", true, CoreErrorCodes::kInvalidParam, false},
        {"no array", false, R"({"DocumentFonts":[{"PostScriptName":"Lost"}]})", true,
         CoreErrorCodes::kInvalidParam, false},
        {"no fonts", false, "[]", true, CoreErrorCodes::kInvalidParam, false},
        {"no fonts, which are not resolvable", true, "[]", true, CoreErrorCodes::kInvalidParam, false},
        {"some resolvable", true, kBoth, true, 0, true},
        {"some resolvable, which is all that it takes", true, kBoth, false, 0, true},
        {"none resolvable", true, kOnlyLost, true, CoreErrorCodes::kNotFound, false},
        {"none need be, permitted", false, kOnlyLost, true, 0, true},
        {"none need be, not permitted", false, kOnlyLost, false, 0, false},
        {"some resolvable, none need be, not permitted", false, kBoth, false, 0, false},
    };
    for (const Case& each : cases) {
        framework.shownDialogs.clear();
        library.permissions.clear();
        if (each.isPermitted)
            library.permissions = {kPermission_ShowPostscriptReplacements};
        EXPECT_EQ(Resolve(each.onlyIfResolvable, each.fonts), each.result) << each.name;
        EXPECT_EQ(!framework.shownDialogs.empty(), each.shows) << each.name;
        if (each.result == 0) {
            EXPECT_EQ(resolved.c_str(), std::string("[]")) << each.name;
            EXPECT_EQ(Parsed(skipped), json::parse(each.fonts)) << each.name << ": no font is lost";
        } else {
            EXPECT_EQ(resolved.front(), 'r') << each.name;
            EXPECT_EQ(skipped.front(), 's') << each.name;
        }
    }
}

TEST_F(FontDialogsTest, ChosenFontsCarryTheirReplacementAndTheOthersAreNamedAsSkipped) {
    framework.replacements = FakeFramework::Replacements{{"Serifa", "Serifa-Roman"}};
    EXPECT_EQ(Resolve(true, kBoth), 0u);
    json expected = kResolvable;
    expected["MatchedFont"] = kCandidate;
    EXPECT_EQ(Parsed(resolved), json::array({expected}));
    EXPECT_EQ(Parsed(skipped), json::array({kLost}));
    EXPECT_THAT(
        trace.Text(),
        HasSubstr(" This font was skipped:  'Lost' -- host app's Find Fonts dialog will be displayed\n"));
    EXPECT_THAT(trace.Text(), Not(HasSubstr("'Serifa' --")));
}

TEST_F(FontDialogsTest, ABufferMustHoldMoreThanTheTextAndTheSecondWaitsForTheFirst) {
    EXPECT_EQ(Resolve(true, kBoth), 0u);
    const size_t resolvedLength = std::string(resolved.c_str()).size();
    const size_t skippedLength = std::string(skipped.c_str()).size();
    resolvedSize = resolvedLength;
    EXPECT_EQ(Resolve(true, kBoth), CoreErrorCodes::kIndexOutOfRange);
    EXPECT_EQ(resolvedSize, resolvedLength);
    EXPECT_EQ(skippedSize, 4096u);
    EXPECT_EQ(skipped.front(), 's');
    resolvedSize = resolvedLength + 1;
    skippedSize = skippedLength;
    EXPECT_EQ(Resolve(true, kBoth), CoreErrorCodes::kIndexOutOfRange);
    EXPECT_EQ(resolved.c_str(), std::string("[]"));
    EXPECT_EQ(skippedSize, skippedLength);
    EXPECT_EQ(skipped.front(), 's');
    skippedSize = skippedLength + 1;
    EXPECT_EQ(Resolve(true, kBoth), 0u);
    EXPECT_EQ(NamesIn(skipped), json({"Lost", "Serifa"}));
}

TEST_F(FontDialogsTest, BehindADialogItIsNotShownAgain) {
    const std::string fonts = kBoth;
    std::vector<ErrorCode> inner;
    framework.whileDialogShows = [&] {
        char text[4096];
        size_t size = sizeof text;
        for (const bool onlyIfResolvable : {true, false})
            inner.push_back(InvokeResolveDialog(onlyIfResolvable, fonts.c_str(), text, &size, text, &size));
    };
    EXPECT_EQ(Resolve(true, fonts), 0u);
    EXPECT_EQ(Resolve(false, fonts), 0u) << "the way is free again";
    EXPECT_THAT(inner, testing::Each(PLUGINCORE_UNKNOWN_ERROR));
    EXPECT_EQ(inner.size(), 4u);
    EXPECT_EQ(framework.shownDialogs.size(), 2u);
    framework.shownDialogs.clear();
    inner.clear();
    framework.whileDialogShows = [&] { inner.push_back(InvokeRestrictedFontsDialog(true, fonts.c_str())); };
    EXPECT_EQ(FontDialogs::InvokeRestrictedFontsDialog(false, fonts), 0u);
    EXPECT_THAT(inner, ElementsAre(PLUGINCORE_UNKNOWN_ERROR));
    EXPECT_THAT(framework.shownDialogs, ElementsAre("RestrictedFonts"));
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

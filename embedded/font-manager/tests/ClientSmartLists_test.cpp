// Smart lists, as a plug-in's panels use them.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/TestLibrary.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

using Names = std::vector<std::string>;

class SmartListTest : public testing::Test {
protected:
    void SetUp() override {
        mLibrary.ResetPluginFacadeInstance();  // an earlier test may have left one without an agent
        mWorld.StartAgent();
        for (const char* name : {"Alpha-Regular", "Beta-Regular", "Gamma-Regular"})
            mWorld.WriteFont(name);
        mWorld.RunForJson({"add", mWorld.Path("fonts")});
        mWorld.RunForJson({"set", "create", "Poster"});
        mWorld.RunForJson({"set", "add", "Poster", "Beta-Regular"});
    }
    void TearDown() override { mLibrary.CleanUpOnShutdown(); }

    ErrorCode Create(const char* name, const std::vector<int64_t>& sets, int32_t& list) {
        return mLibrary.CreateSmartList(mLibrary.Facade(), cf::String(name).get(), nullptr,
                                        IDsArray(sets).get(), nullptr, &list);
    }
    int32_t Created(const char* name, const std::vector<int64_t>& sets) {
        int32_t list = 0;
        EXPECT_EQ(Create(name, sets, list), 0u);
        return list;
    }
    Names FontsOf(int32_t list) {
        const auto fonts = cf::MutableArray();
        EXPECT_EQ(mLibrary.GetSmartListFonts(mLibrary.Facade(), list, fonts.get()), 0u);
        Names names;
        for (CFIndex index = 0; index < cf::Count(fonts.get()); ++index)
            names.push_back(
                cf::GetString(cf::Get<CFDictionaryRef>(fonts.get(), index), kGS_PostScriptNameKey));
        return names;
    }

    TestWorld mWorld;
    TestLibrary mLibrary;
    const int64_t mSet = 1;  ///< the first set of a fresh agent
};

TEST_F(SmartListTest, IsMadeChangedAndDeleted) {
    const PluginFacadeRef facade = mLibrary.Facade();
    const int32_t posters = Created("Plakate \u5b57\u4f53", {mSet});
    const int32_t all = Created("Everything", {});
    EXPECT_EQ(FontsOf(posters), Names{"Beta-Regular"});
    EXPECT_EQ(FontsOf(all).size(), 3u);
    int32_t untouched = -5;
    const auto lists = cf::MutableArray();
    EXPECT_EQ(mLibrary.RenameSmartList(facade, posters, CFSTR("Posters")), 0u);
    EXPECT_EQ(mLibrary.SetSmartListQuery(facade, posters, IDsArray({1}).get(), IDsArray({9, mSet}).get(),
                                         IDsArray({all}).get()),
              0u);
    CFDictionaryRef found = nullptr;
    ASSERT_EQ(mLibrary.GetSmartList(facade, posters, &found), 0u);
    const auto list = AdoptCF(found);
    EXPECT_EQ(cf::GetInt64(found, kGS_SmartListIDKey), posters);
    EXPECT_EQ(Json::parse(cf::GetString(found, kGS_ListDefinitionKey)), (Json{{"smartListID", posters},
                                                                              {"smartListName", "Posters"},
                                                                              {"workgroupIDs", {1}},
                                                                              {"setIDs", {mSet, 9}},
                                                                              {"smartSetIDs", {all}}}));
    ASSERT_EQ(mLibrary.GetAllSmartLists(facade, lists.get()), 0u);
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(lists.get(), 1), kGS_SmartListNameKey), "Posters");
    const std::pair<ErrorCode, ErrorCode> answers[] = {
        {Create("Everything", {}, untouched), CoreErrorCodes::kItemAlreadyExists},
        {Create(" ", {}, untouched), CoreErrorCodes::kMissingParam},
        {Create("New", {0}, untouched), CoreErrorCodes::kInvalidParam},
        {Create("New", {(int64_t{1} << 32) + 1}, untouched), CoreErrorCodes::kInvalidParam},
        {mLibrary.RenameSmartList(facade, posters, CFSTR("Everything")), CoreErrorCodes::kItemAlreadyExists},
        {mLibrary.RenameSmartList(facade, posters, CFSTR("Posters")), 0},
        {mLibrary.DeleteSmartList(facade, all), 0},
        {mLibrary.DeleteSmartList(facade, all), GZephyrinSetManager::kSetNotFound},
        {mLibrary.GetSmartList(facade, all, &found), GZephyrinSetManager::kSetNotFound},
        {mLibrary.GetSmartListFonts(facade, all, lists.get()), GZephyrinSetManager::kSetNotFound},
        {mLibrary.SetSmartListQuery(facade, all, nullptr, nullptr, nullptr),
         GZephyrinSetManager::kSetNotFound}};
    for (size_t index = 0; index < std::size(answers); ++index)
        EXPECT_EQ(answers[index].first, answers[index].second) << index;
    EXPECT_EQ(untouched, -5);
    EXPECT_EQ(cf::Count(lists.get()), 2);
    mWorld.RunForJson({"logout"});
    EXPECT_EQ(Create("New", {}, untouched), GZephyrinServerFacade::kNotLoggedIn);
    EXPECT_EQ(mLibrary.DeleteSmartList(facade, posters), GZephyrinServerFacade::kNotLoggedIn);
}

TEST_F(SmartListTest, AQueryIsTriedForTheOneWhoTriesItAndNotSaved) {
    const PluginFacadeRef facade = mLibrary.Facade();
    const auto attempt = [&](int32_t list, CFArrayRef sets) {
        return mLibrary.QueryForSmartListFonts(facade, list, nullptr, sets, nullptr);
    };
    const auto posters = IDsArray({mSet});
    const int32_t list = Created("Everything", {});
    EXPECT_EQ(attempt(list, posters.get()), 0u);
    EXPECT_EQ(FontsOf(list), Names{"Beta-Regular"});
    EXPECT_EQ(mWorld.RunForJson({"smartlist", "fonts", "Everything"})["fonts"].size(), 3u);
    EXPECT_EQ(mLibrary.SetSmartListQuery(facade, list, nullptr, nullptr, nullptr), 0u);
    EXPECT_EQ(FontsOf(list).size(), 3u);
    EXPECT_EQ(attempt(list + 1, posters.get()), GZephyrinSetManager::kSetNotFound);
    EXPECT_EQ(mLibrary.GetSmartListFonts(facade, 0, cf::MutableArray().get()),
              GZephyrinSetManager::kSetNotFound);
    EXPECT_EQ(attempt(0, posters.get()), 0u);
    EXPECT_EQ(FontsOf(0), Names{"Beta-Regular"});
}

TEST_F(SmartListTest, ThePanelsTreeHoldsWhatListsAreMadeOf) {
    const int32_t list = Created("Posters", {mSet});
    CFDictionaryRef found = nullptr;
    ASSERT_EQ(mLibrary.GetPanelSmartListTree(mLibrary.Facade(), &found), 0u);
    const auto tree = AdoptCF(found);
    const auto arrayOf = [](CFDictionaryRef dictionary, const char* key) {
        return cf::As<CFArrayRef>(CFDictionaryGetValue(dictionary, cf::String(key).get()));
    };
    const CFArrayRef workgroups = arrayOf(found, kGS_WorkgroupsKey);
    ASSERT_EQ(cf::Count(workgroups), 2);
    const CFArrayRef sets = arrayOf(cf::Get<CFDictionaryRef>(workgroups, 0), kGS_SetsKey);
    ASSERT_EQ(cf::Count(sets), 1);
    EXPECT_EQ(cf::GetInt64(cf::Get<CFDictionaryRef>(sets, 0), kGS_SetIDKey), mSet);
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(sets, 0), kGS_SetNameKey), "Poster");
    EXPECT_EQ(cf::Count(arrayOf(cf::Get<CFDictionaryRef>(workgroups, 1), kGS_SetsKey)), 0);
    const auto fonts = cf::MutableArray();
    ASSERT_EQ(mLibrary.GetSmartListFonts(mLibrary.Facade(), list, fonts.get()), 0u);
    EXPECT_EQ(cf::GetString(cf::Get<CFDictionaryRef>(fonts.get(), 0), kGS_DisplayNameKey), "Beta Regular");
    const CFArrayRef lists = arrayOf(found, kGS_SmartListsKey);
    ASSERT_EQ(cf::Count(lists), 1);
    EXPECT_EQ(cf::GetInt64(cf::Get<CFDictionaryRef>(lists, 0), kGS_SmartListIDKey), list);
}

}  // namespace
}  // namespace pellwick::test

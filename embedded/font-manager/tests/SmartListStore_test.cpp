#include "store/SmartListStore.h"

#include <gtest/gtest.h>

#include "common/Protocol.h"
#include "store/Database.h"
#include "store/FontStore.h"
#include "store/Schema.h"
#include "store/SetStore.h"
#include "store/WorkgroupStore.h"

namespace pellwick {
namespace {

using IDs = std::vector<uint32_t>;

/// Fonts 1 and 2 are in the first workgroup, 2 and 3 in the second; 4 is in none.
class SmartListStoreTest : public testing::Test {
protected:
    SmartListStoreTest() {
        PrepareSchema(mDatabase);
        const int32_t second = mWorkgroups.Create("Project", kWorkgroupType_FontLibrary);
        for (int number = 1; number <= 4; ++number)
            mFonts.Add({0, std::to_string(number), "font.ttf", ".ttf", 10}, {FontFace()});
        for (const uint32_t font : {1, 2})
            mWorkgroups.AddFont(mFirst, font);
        for (const uint32_t font : {2, 3})
            mWorkgroups.AddFont(second, font);
        mSecond = second;
        mSet = mSets.Create(mFirst, "Poster");
        mSets.AddFont(mSet, 4);
    }

    IDs FontsOf(int32_t id, const SmartListQuery& query, uint32_t after = 0, int limit = 100) {
        IDs ids;
        for (const Font& font : mFonts.ListFrom(mLists.Resolve(id, query), after, limit))
            ids.push_back(font.id);
        return ids;
    }
    IDs FontsOf(const SmartListQuery& query) { return FontsOf(0, query); }
    IDs FontsOf(int32_t id) { return FontsOf(id, mLists.Find(id)->query); }

    Database mDatabase{":memory:"};
    FontStore mFonts{mDatabase};
    WorkgroupStore mWorkgroups{mDatabase};
    SetStore mSets{mDatabase};
    SmartListStore mLists{mDatabase};
    const int32_t mFirst = 1;
    int32_t mSecond = 0;
    int32_t mSet = 0;
};

TEST_F(SmartListStoreTest, HoldsTheFontsThatAreInAnyOfItsSources) {
    const std::pair<SmartListQuery, IDs> cases[] = {{{{mFirst}, {}, {}}, {1, 2}},
                                                    {{{mFirst, mSecond}, {}, {}}, {1, 2, 3}},
                                                    {{{mSecond}, {mSet}, {}}, {2, 3, 4}},
                                                    {{}, {1, 2, 3, 4}},
                                                    {{{kWorkgroupID_All}, {}, {}}, {1, 2, 3, 4}}};
    for (const auto& [query, fonts] : cases)
        EXPECT_EQ(FontsOf(query), fonts);
    EXPECT_EQ(FontsOf(0, {{mSecond}, {mSet}, {}}, 2, 1), (IDs{3}));
}

TEST_F(SmartListStoreTest, FollowsOtherListsAndGetsOutOfCircles) {
    const int32_t inner = mLists.Create("Inner", {{}, {mSet}, {}});
    const int32_t middle = mLists.Create("Middle", {{mFirst}, {}, {inner}});
    const int32_t outer = mLists.Create("Outer", {{}, {}, {middle, inner}});
    EXPECT_EQ(FontsOf(outer), (IDs{1, 2, 4}));
    mLists.SetQuery(inner, {{mSecond}, {}, {outer, inner}});
    EXPECT_EQ(FontsOf(outer), (IDs{1, 2, 3}));
    EXPECT_EQ(FontsOf(inner), (IDs{1, 2, 3}));
    mLists.SetQuery(inner, {{}, {}, {inner}});
    EXPECT_EQ(FontsOf(inner), IDs());
    EXPECT_EQ(FontsOf(inner, {{}, {mSet}, {middle}}),
              (IDs{1, 2, 4}));  // the query that is tried, in its place
}

TEST_F(SmartListStoreTest, AListThatLosesItsLastSourceIsEmpty) {
    const int32_t inner = mLists.Create("Inner", {});
    const int32_t list = mLists.Create("List", {{}, {mSet}, {}});
    const int32_t outer = mLists.Create("Outer", {{}, {}, {inner}});
    EXPECT_EQ(FontsOf(outer), (IDs{1, 2, 3, 4}));
    mSets.Delete(mSet);
    mLists.Delete(inner);
    EXPECT_EQ(FontsOf(list), IDs());
    EXPECT_EQ(FontsOf(outer), IDs());
    EXPECT_GT(mLists.Create("New", {}), outer);
}

}  // namespace
}  // namespace pellwick

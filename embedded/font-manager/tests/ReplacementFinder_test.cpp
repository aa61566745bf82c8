#include "activation/ReplacementFinder.h"

#include <gmock/gmock.h>

#include "common/FontManagerLimits.h"
#include "store/Database.h"
#include "store/Schema.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace pellwick {
namespace {

class ReplacementFinderTest : public testing::Test {
protected:
    ReplacementFinderTest() { PrepareSchema(mDatabase); }

    uint32_t Add(const std::string& postScriptName, const std::string& family, const std::string& style,
                 const std::string& version = "Version 1.0") {
        FontFace face;
        face.postScriptName = postScriptName;
        face.family = family;
        face.style = style;
        face.version = version;
        const std::string checksum = "checksum" + std::to_string(++mFiles);
        const int64_t file = mFonts.Add({0, checksum, "font.ttf", ".ttf", 10}, {face});
        return mFonts.FontsOfFile(file).front().id;
    }
    std::vector<std::string> Find(const RequestedFont& request) {
        std::vector<std::string> names;
        for (const Font& font : mFinder.Find(request))
            names.push_back(font.postScriptName);
        return names;
    }
    std::vector<std::string> Find(const std::string& name) { return Find({name, "", "", "", 0}); }

    Database mDatabase{":memory:"};
    FontStore mFonts{mDatabase};
    ReplacementFinder mFinder{mFonts};
    int mFiles = 0;
};

TEST_F(ReplacementFinderTest, NamesThatAreOnlySpelledDifferentlyComeFirst) {
    Add("SampleSansStd-Bold", "Sample Sans Std", "Bold");
    Add("SampleSansStd-Black", "Sample Sans Std", "Black");
    Add("Other-Bold", "Other", "Bold");
    for (const char* name :
         {"SampleSans-Bold", "SAMPLE SANS BOLD", "SampleSansPS-BoldMT", "SampleSansLT-Bold",
          "ABCDEF+SampleSansPro-Bold", "SampleSans,Bold", "SampleSans-Bd"})
        EXPECT_THAT(Find(name), ElementsAre("SampleSansStd-Bold", "SampleSansStd-Black")) << name;
    EXPECT_THAT(Find("samplesansstd bold"), ElementsAre("SampleSansStd-Bold"))
        << "without capitals a family's words cannot be told apart";
}

TEST_F(ReplacementFinderTest, ThePostScriptNameCountsForMoreThanTheStyleThatAFontClaims) {
    Add("Sample-Bold", "Sample", "Regular");
    Add("Sample-Semibold", "Sample", "Semibold");
    EXPECT_THAT(Find("SAMPLE BOLD"), ElementsAre("Sample-Bold", "Sample-Semibold"));
}

TEST_F(ReplacementFinderTest, InTheFamilyTheNearestStylesAreOffered) {
    Add("Fam-1", "Sample", "Regular");
    Add("Fam-2", "Sample", "Italic");
    Add("Fam-3", "Sample", "Bold");
    Add("Fam-4", "Sample", "Bold Italic");
    Add("Fam-5", "Sample Condensed", "Bold");
    Add("Fam-6", "Sample Light", "Italic");
    Add("Fam-7", "Samples", "Black");
    ASSERT_EQ(kMaxReplacements, 5u);
    EXPECT_THAT(Find("Sample-Black"), ElementsAre("Fam-3", "Fam-1", "Fam-4", "Fam-5", "Fam-2"));
    EXPECT_THAT(Find("SampleNarrow-Bold").front(), "Fam-5");
    EXPECT_THAT(Find({"MadeUpName", "Sample", "Light Oblique", "", 0}).front(), "Fam-6");
    EXPECT_THAT(Find({"", "sample", "", "", 0}).front(), "Fam-1");
}

TEST_F(ReplacementFinderTest, FontsThatCameOrWentSinceAreKnown) {
    Add("Sample-Bold", "Sample", "Bold");
    EXPECT_THAT(Find("Sample-Black"), ElementsAre("Sample-Bold"));
    const uint32_t nearer = Add("Sample-Heavy", "Sample", "Heavy");
    EXPECT_THAT(Find("Sample-Black"), ElementsAre("Sample-Heavy", "Sample-Bold"));
    mFonts.RemoveFile(mFonts.Find(nearer)->file.id);
    EXPECT_THAT(Find("Sample-Black"), ElementsAre("Sample-Bold"));
}

TEST_F(ReplacementFinderTest, WhatIsNotNearIsNotOffered) {
    Add("Sample-Bold", "Sample", "Bold");
    Add("Bold", "Bold", "Regular");
    for (const char* name :
         {"Specimen-Bold", "Sam-Bold", "SampleSerif-Bold", "", "-", "Bold-Sample", "Regular"})
        EXPECT_THAT(Find(name), IsEmpty()) << name;
}

TEST_F(ReplacementFinderTest, OfOneNameTheBestFontThatIsThereIsOffered) {
    Add("Sample-Bold", "Sample", "Bold", "Version 1.0");
    const uint32_t newer = Add("Sample-Bold", "Sample", "Bold", "Version 2.0");
    const uint32_t missing = Add("Sample-Bold", "Sample", "Bold", "Version 3.0");
    const uint32_t alone = Add("Sample-Thin", "Sample", "Thin");
    for (const uint32_t font : {missing, alone})
        mFonts.SetFileMissing(mFonts.Find(font)->file.id, true);
    const std::vector<Font> found = mFinder.Find({"Sample-Heavy", "", "", "", 0});
    ASSERT_EQ(found.size(), 1u);
    EXPECT_EQ(found.front().id, newer);
}

}  // namespace
}  // namespace pellwick

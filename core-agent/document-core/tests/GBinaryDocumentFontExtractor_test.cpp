#include "GBinaryDocumentFontExtractor.h"

#include <gmock/gmock.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "FakePlatform.h"
#include "FileChunk.h"
#include "SmallChunkExtractor.h"
#include "TemporaryFolder.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

using testing::ElementsAre, testing::IsEmpty;

namespace {

using Names = std::set<std::string>;

class ExtractorTest : public testing::Test {
protected:
    Names Extract(const std::string& fileName, const std::string& content, size_t chunkSize = 0x20000000,
                  size_t windowSize = 256) {
        Names names{"cleared at the start"};
        SmallChunkExtractor extractor(folder.Write(fileName, content), chunkSize, windowSize);
        EXPECT_EQ(extractor.ExtractFontNames(names), 0u);
        return names;
    }

    TemporaryFolder folder;
};

std::string Descriptor(const std::string& name, const std::string& separator = " /") {
    return "<< /Type /FontDescriptor /FontName" + separator + name + " /Flags 4 >>\n";
}

/// A name as the text engine writes it: big-endian UTF-16 with its byte-order mark.
std::string Utf16Name(const std::string& name) {
    std::string bytes = "\xFE\xFF";
    for (const char letter : name) {
        bytes += '\0';
        bytes += letter;
    }
    return bytes;
}

std::string FontSet(const std::vector<std::string>& names) {
    std::string text = "/FontSet [ ";
    for (const std::string& name : names)
        text += "<< /Name (" + Utf16Name(name) + ") /Script 0 >> ";
    return text + "] ";
}

std::string TextLayer(const std::vector<std::string>& names) {
    std::string text = ">> /0 << /1 << /0 [ ";
    for (const std::string& name : names)
        text += "<< /0 << /99 /CoolTypeFont /0 << /0 (" + Utf16Name(name) + ") /2 1 >> >> ";
    return text + "] >> ";
}

}  // namespace

TEST_F(ExtractorTest, FindsTheNamesThatEachKindOfDocumentHas) {
    const auto expect = [this](const char* file, const std::string& content, const Names& names) {
        EXPECT_EQ(Extract(file, content), names) << content;
    };
    expect("a.ai", Descriptor("ABCDEF+Comic-Bold") + Descriptor("GHIJKL+Arial", "/"),
           {"Arial", "Comic-Bold"});
    expect("a.pdf", "/FontName /Times\r\n\t /Flags >> /FontName /Two Words /x >>", {"Times", "Two Words"});
    expect("a.pdf", "/FontName /NoEnd >> /Flags", {});
    expect("a.pdf", "/FontName //>>", {""});
    expect("a.pdf", std::string("/FontName /Caf\xE9x\0y /F >>", 24), {"Caféxy"});
    // The default font alone is no choice.
    expect("a.ait", Descriptor("AAAAAA+MyriadPro-Regular"), {});
    expect("a.ai", Descriptor("MyriadPro-Regular") + Descriptor("Courier"), {"Courier", "MyriadPro-Regular"});
    // Escaped text is passed over; right at the start the byte before is not looked at.
    expect("a.ai", "xx\\/FontName /Escaped /F >> " + Descriptor("Real"), {"Real"});
    expect("a.ai", "\\/FontName /AtOffsetOne /F >>", {"AtOffsetOne"});
    // The invisible font ends the list that it does not open.
    expect("a.psd", FontSet({"AdobeInvisFont", "One", "Two"}), {"One", "Two"});
    expect("a.psb", FontSet({"One", "AdobeInvisFont", "Unused"}) + FontSet({"Three"}), {"One", "Three"});
    // The default font counts when the invisible one follows.
    expect("a.aep", TextLayer({"One", "Two"}), {"One", "Two"});
    expect("a.aet", TextLayer({"Myriad-Roman", "One"}), {"One"});
    expect("a.aepx", TextLayer({"Myriad-Roman", "One", "AdobeInvisFont", "Two"}), {"Myriad-Roman", "One"});
    expect("a.aep", TextLayer({"One", "Myriad-Roman", "AdobeInvisFont"}), {"One"});
    expect("a.aep", TextLayer({"AdobeInvisFont", "One"}) + TextLayer({"Two"}), {"Two"});
    expect("a.ai", "", {});
}

TEST_F(ExtractorTest, TheExtensionPicksTheKindExactly) {
    const std::string content =
        Descriptor("Illustrator") + FontSet({"Photoshop"}) + TextLayer({"AfterEffects"});
    EXPECT_THAT(Extract("a.ai", content), ElementsAre("Illustrator"));
    EXPECT_THAT(Extract("a.psd", content), ElementsAre("Photoshop"));
    EXPECT_THAT(Extract("a.aep", content), ElementsAre("AfterEffects"));
    EXPECT_THAT(Extract("a.eps", content), IsEmpty());
    for (const char* unknown : {"a.AI", "a", "a.ai.bak"})
        EXPECT_THAT(Extract(unknown, content), ElementsAre("AfterEffects", "Illustrator", "Photoshop"));
    // Of 1 GiB and more, those of no known kind are not searched.
    const std::string large = folder.Write("large", content);
    std::filesystem::resize_file(platform::Utf8Path(large), 0x40000000);
    Names names;
    GBinaryDocumentFontExtractor extractor{GFileSystemSpec(large)};
    EXPECT_EQ(extractor.ExtractFontNames(names), CoreErrorCodes::kSuccess);
    EXPECT_THAT(names, IsEmpty());
    std::filesystem::resize_file(platform::Utf8Path(large), 0x3FFFFFFF);
    FakeClock clock;
    clock.ticksPerLook = 1;
    extractor.SetTimeLimit(std::chrono::milliseconds(40));
    EXPECT_EQ(extractor.ExtractFontNames(names), CoreErrorCodes::kSuccess);
    EXPECT_THAT(names, ElementsAre("Illustrator"));
}

TEST(EraseImpossibleNames, LeavesNamesThatAFontCanHave) {
    Names names{"", "A", std::string(4096, 'b'), std::string(4097, 'c')};
    EraseImpossibleNames(names);
    EXPECT_THAT(names, ElementsAre("A", std::string(4096, 'b')));
}

TEST_F(ExtractorTest, WhatAChunkCutsIsFoundInTheNext) {
    std::string illustrator = "%PDF-1.4\n";
    std::string photoshop = "8BPS";
    std::string afterEffects = "RIFX";
    for (const char* name : {"First", "Second-Bold", "Third-Italic"}) {
        illustrator += std::string(37, '.') + Descriptor(name);
        photoshop += std::string(41, '.') + FontSet({name});
        afterEffects += std::string(43, '.') + TextLayer({name});
    }
    // Large enough for the longest dictionary, which is what a chunk must hold.
    for (size_t chunkSize = 160; chunkSize < 320; ++chunkSize) {
        const auto all = ElementsAre("First", "Second-Bold", "Third-Italic");
        const size_t windowSize = 1 + chunkSize % 61;
        EXPECT_THAT(Extract("a.ai", illustrator, chunkSize, windowSize), all) << chunkSize;
        EXPECT_THAT(Extract("a.psd", photoshop, chunkSize, windowSize), all) << chunkSize;
        EXPECT_THAT(Extract("a.aep", afterEffects, chunkSize, windowSize), all) << chunkSize;
    }
}

TEST_F(ExtractorTest, ARangeThatNeverEndsDoesNotHoldTheSearchUp) {
    const std::string endless = ">> /0 << /1 << /0 [ " + std::string(1000, 'x');
    EXPECT_THAT(Extract("a.aep", endless, 64), IsEmpty());
    EXPECT_THAT(Extract("a.psd", "/FontSet [ " + std::string(1000, 'x'), 64), IsEmpty());
    EXPECT_THAT(Extract("a.ai", "..../FontName /X" + std::string(1000, 'x'), 64), IsEmpty());
}

TEST_F(ExtractorTest, NamesAndRangesLongerThanAWindowAreWhole) {
    const std::string longName(3000, 'n');
    const std::string padding(5000, '.');
    EXPECT_THAT(Extract("a.ai", "<< /FontName /" + longName + "/x " + padding + ">>" + Descriptor("Next")),
                ElementsAre("Next", longName));
    EXPECT_THAT(
        Extract("a.psd", "/FontSet [ " + padding + " /Name (" + Utf16Name("One") + ")" + padding + "]"),
        ElementsAre("One"));
}

TEST_F(ExtractorTest, AWindowStaysAsLargeAsItWas) {
    GFile file;
    const std::string content = std::string(100000, '.') + "needle";
    ASSERT_EQ(file.Open(GFileSystemSpec(folder.Write("large", content)), GFile::eRead), 0u);
    std::vector<char> window(256);
    const FileChunk::HasTime always = [] { return true; };
    FileChunk chunk(file, 0, content.size(), window, always);
    EXPECT_EQ(chunk.Find(0, content.size(), "needle"), 100000u);
    EXPECT_EQ(window.size(), 256u);
}

TEST_F(ExtractorTest, GivesWayToTheHostAndKeepsWhatItHasFound) {
    std::string pdf;
    std::string photoshop;
    for (int index = 100; index < 200; ++index) {
        pdf += Descriptor("Font-" + std::to_string(index)) + std::string(300, 'x');
        photoshop += FontSet({"Font-" + std::to_string(index)}) + std::string(300, 'x');
    }
    for (const auto& [name, content] : {std::pair("a.ai", pdf), {"a.psd", photoshop}, {"a.unknown", pdf}}) {
        FakeClock clock;
        clock.ticksPerLook = 1;
        SmallChunkExtractor extractor(folder.Write(name, content), 4096, 256);
        extractor.SetTimeLimit(std::chrono::milliseconds(40));
        Names names;
        EXPECT_EQ(extractor.ExtractFontNames(names), 0u) << name;
        EXPECT_TRUE(extractor.HasGivenWay()) << name;
        EXPECT_LT(names.size(), 90u) << name;
        EXPECT_EQ(names.count("Font-100"), 1u) << name;
        extractor.SetTimeLimit(std::chrono::hours(1));
        EXPECT_EQ(extractor.ExtractFontNames(names), 0u);
        EXPECT_FALSE(extractor.HasGivenWay());
        EXPECT_EQ(names.size(), 100u) << name;
    }
}

// PLUGINCORE_CORPUS names a folder of real documents and a file expected.json,
// {"path below the folder": ["name", …]}.
TEST(DocumentCorpus, EveryDocumentYieldsItsNames) {
    const std::string corpus = platform::EnvironmentVariable("PLUGINCORE_CORPUS");
    if (corpus.empty())
        GTEST_SKIP() << "PLUGINCORE_CORPUS is not set";
    std::ifstream stream(platform::Utf8Path(corpus + "/expected.json"));
    const nlohmann::json documents = nlohmann::json::parse(stream);
    for (const auto& [file, expected] : documents.items()) {
        Names names;
        EXPECT_EQ(GBinaryDocumentFontExtractor{GFileSystemSpec(corpus + "/" + file)}.ExtractFontNames(names),
                  0u);
        EXPECT_EQ(names, expected.get<Names>()) << file;
    }
}

#include "DocumentReader.h"

#include <gmock/gmock.h>

#include "FontRecords.h"
#include "Formats.h"
#include "PlacedDocuments.h"
#include "StringConversion.h"
#include "TemporaryFolder.h"
#include "TestFiles.h"

using documents::DocumentReader;
using documents::ReadStatus;
using testing::HasSubstr;

namespace {

std::string DrawingWith(const std::string& family) {
    return "<svg><text font-family=\"" + family + "\">x</text></svg>";
}

}  // namespace

TEST(DocumentReader, ADocumentOfAnyPathIsReadAndTheNextOneAfterATrouble) {
    const TemporaryFolder folder;
    DocumentReader reader(BuiltFile(DOCUMENT_READER_PROGRAM));
    const std::string good = folder.Write("Титул 字 🙂.svg", DrawingWith("Ünïcode 字\xFF"));
    EXPECT_EQ(reader.Read(good).status, ReadStatus::kUnreadable) << "it is no UTF-8";
    const std::string drawing = folder.Write("a.SVG", DrawingWith("Ünïcode 字"));
    EXPECT_EQ(reader.Read(drawing).fonts.at(0).family, "Ünïcode 字");
    EXPECT_THAT(reader.Read(folder / "missing.svg").problem, HasSubstr("cannot be opened"));
    EXPECT_EQ(reader.Read(folder.Write("letter.txt", "Dear reader")).status, ReadStatus::kUnknown);
    EXPECT_EQ(reader.Read(folder.Write("empty", "")).status, ReadStatus::kUnknown);
    const auto found = reader.Read(drawing);
    EXPECT_EQ(found.reader, "svg");
    EXPECT_EQ(found.fonts.at(0).where, "text");
}

TEST(DocumentReader, FontsOfPlacedDocumentsAreTheirsUnlessTheDocumentUsesThemToo) {
    const TemporaryFolder folder;
    const auto drawing = [](const std::string& families, const std::string& images) {
        return "<svg>" + images + families + "</svg>";
    };
    const auto text = [](const std::string& family) {
        return "<text font-family=\"" + family + "\">x</text>";
    };
    const std::string onServer = folder.Write("server/secret.svg", drawing(text("Secret"), ""));
    const std::string page =
        folder.Write("page.svg", drawing(text("Own"), "<image href=\"file:////" + onServer + R"("/>
<image href="art%20字.svg"/><image href="page.svg"/>
<image href="data:image/png;base64,AA"/><image href="http://host/logo.svg"/><image href="gone.svg"/>
<image href="file:///of/another/machine/logo.svg"/>)"));
    const std::string art =
        folder.Write("art 字.svg", drawing(text("Own") + text("Both"), R"(<image href="page.svg"/>)"));
    const std::string logo = folder.Write("Links/logo.svg", drawing(text("Both") + text("Logo"), ""));
    DocumentReader reader(BuiltFile(DOCUMENT_READER_PROGRAM));
    const auto fonts = ReadWithPlaced(reader, page).fonts;
    ASSERT_THAT(fonts, testing::SizeIs(3));
    EXPECT_THAT(fonts[0].placedIn, testing::ElementsAre(logo, art));
    EXPECT_EQ(fonts[0].where, "placed logo.svg, art 字.svg");
    EXPECT_THAT(fonts[1].placedIn, testing::ElementsAre(logo));
    EXPECT_THAT(fonts[2].placedIn, testing::IsEmpty());
    EXPECT_EQ(fonts[2].where, "text");
    const documents::DocumentFonts named{ReadStatus::kRead, "", "", {fonts[2], {"A-B", "", "", "text"}}};
    EXPECT_EQ(documents::FontRecords(named), nlohmann::json::parse(R"([
{"PostScriptName":"Own","Family":"Own","where":"text","embedded":false},
{"PostScriptName":"A-B","where":"text","embedded":false}])"));
}

TEST(DocumentReader, WithoutItsProgramItSaysSo) {
    const TemporaryFolder folder;
    const std::string drawing = folder.Write("a.svg", DrawingWith("A"));
    EXPECT_THROW(DocumentReader(folder / "no program").Read(drawing), documents::NoDocumentReader);
}

TEST(Formats, EachIsNamedInThePageOfTheHost) {
    if (!HasSources())
        GTEST_SKIP() << kNoSources;
    const std::string page = AsciiLowerCase(ContentOf(SourceFile("docs/host.md")));
    for (const documents::Format& format : documents::Formats()) {
        const std::string name(format.name);
        const bool isNamed = page.find("\n| " + name) != std::string::npos ||
                             page.find("(`." + name + "`) |") != std::string::npos;
        EXPECT_TRUE(isNamed) << "the page says nothing of " << name;
    }
}

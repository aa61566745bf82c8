#include <zip.h>

#include <utility>

#include "ReaderTest.h"

using documents::test::Fonts;
using testing::ElementsAre, testing::HasSubstr;

namespace {

using Parts = std::vector<std::pair<std::string, std::string>>;

/// An archive of a type's own kind: the type comes first, as it is.
std::string MakeArchive(const std::string& type, const Parts& parts) {
    zip_source_t* target = zip_source_buffer_create(nullptr, 0, 0, nullptr);
    zip_source_keep(target);
    zip_t* archive = zip_open_from_source(target, ZIP_TRUNCATE, nullptr);
    const auto add = [&](const std::string& name, const std::string& content) {
        zip_source_t* source = zip_source_buffer(archive, content.data(), content.size(), 0);
        return static_cast<zip_uint64_t>(zip_file_add(archive, name.c_str(), source, 0));
    };
    zip_set_file_compression(archive, add("mimetype", type), ZIP_CM_STORE, 0);
    for (const auto& [name, content] : parts)
        zip_set_file_compression(archive, add(name, content), ZIP_CM_DEFLATE, 1);
    EXPECT_EQ(zip_close(archive), 0);
    zip_stat_t stat;
    zip_source_stat(target, &stat);
    std::string bytes(stat.size, '\0');
    zip_source_open(target);
    zip_source_read(target, bytes.data(), bytes.size());
    zip_source_close(target);
    zip_source_free(target);
    return bytes;
}

std::string MakeText(const std::string& styles, const std::string& content) {
    return MakeArchive("application/vnd.oasis.opendocument.text",
                       {{"styles.xml", styles}, {"content.xml", content}});
}

constexpr char kStyles[] =
    R"(<d xmlns:s="s"><s:style s:name="Body" s:family="paragraph"><s:text-properties s:font-name="Sample"/></s:style></d>)";
constexpr char kContent[] =
    R"(<d xmlns:s="s"><s:automatic-styles><s:style s:name="P1" s:family="paragraph" s:parent-style-name="Body">
<s:text-properties s:font-weight="bold"/></s:style></s:automatic-styles><s:p s:style-name="P1">a</s:p></d>)";

}  // namespace

TEST(OpenDocumentArchive, ContentIsReadWithTheStylesOfTheOtherPart) {
    EXPECT_THAT(Fonts(MakeText(kStyles, kContent)),
                ElementsAre("Sample | Sample |  | style Body", "Sample Bold | Sample | Bold | text"));
}

TEST(OpenDocumentArchive, PlacesWhatStandsOutsideIt) {
    const std::string links =
        R"(<d xmlns:l="l"><l:image l:href="../art/a%20b.svg"/><l:image l:href="Pictures/c.svg"/>
<l:section-source l:href="file:///d.odt"/><l:a l:href="../e.svg"/></d>)";
    EXPECT_THAT(documents::ReadDocumentFonts(MakeText("<d/>", links), "").placed,
                ElementsAre("/d.odt", "art/a b.svg"));
}

TEST(OpenDocumentArchive, WhatIsDamagedOrABombIsOneLine) {
    const std::string whole = MakeText(kStyles, kContent);
    EXPECT_THAT(Fonts(whole.substr(0, whole.size() / 2)), ElementsAre(HasSubstr("it is damaged")));
    EXPECT_THAT(Fonts(MakeArchive("application/vnd.oasis.opendocument.text", {})),
                ElementsAre(HasSubstr("content.xml")));
    EXPECT_THAT(Fonts(MakeText("<d/>", "<d>")), ElementsAre(HasSubstr("it is damaged")));
    const std::string bomb = MakeText(kStyles, "<d>" + std::string(size_t{257} << 20, ' ') + "</d>");
    EXPECT_LT(bomb.size(), size_t{2} << 20);
    EXPECT_THAT(Fonts(bomb), ElementsAre("it unpacks to more than can be read"));
}

TEST(IdmlReader, FontsOfTheListAreThoseThatTextAsksFor) {
    const auto document = [](const std::string& story) {
        return MakeArchive(
            "application/vnd.adobe.indesign-idml-package",
            {{"Resources/Fonts.xml",
              R"(<Fonts><FontFamily Name="Minion Pro"><Font PostScriptName="MinionPro-Regular" FontStyleName="Regular"/>
<Font PostScriptName="MinionPro-Bold" FontStyleName="Bold"/><Font PostScriptName="MinionPro-It" FontStyleName="Italic"/></FontFamily>
<FontFamily Name="Unused"><Font PostScriptName="Unused" FontStyleName="Regular"/></FontFamily></Fonts>)"},
             {"Stories/Story_u1.xml", story},
             {"Spreads/Spread_u2.xml", R"(<Spread><Link LinkResourceURI="file:art/a%20b.ai"/></Spread>)"}});
    };
    EXPECT_THAT(Fonts(document(R"(<Story><CharacterStyleRange FontStyle="Bold"><Properties>
<AppliedFont type="string">Minion Pro</AppliedFont></Properties></CharacterStyleRange></Story>)")),
                ElementsAre("MinionPro-Bold | Minion Pro | Bold | text and styles",
                            "MinionPro-Regular | Minion Pro | Regular | text and styles"));
    const auto all = documents::ReadDocumentFonts(document("<Story/>"), "");
    EXPECT_EQ(all.fonts.size(), 4u) << "where nothing is asked for by name";
    EXPECT_THAT(all.placed, ElementsAre("art/a b.ai"));
}

#include "ReaderTest.h"

using documents::test::Fonts;
using documents::test::Repeated;
using testing::ElementsAre, testing::HasSubstr, testing::IsEmpty;

namespace {

std::string Svg(const std::string& content) {
    return "<svg xmlns=\"http://www.w3.org/2000/svg\">" + content + "</svg>";
}

std::string Hex(std::string_view bytes) {
    std::string digits;
    for (const char byte : bytes) {
        constexpr char kDigits[] = "0123456789abcdef";
        digits += {kDigits[(byte >> 4) & 15], kDigits[byte & 15]};
    }
    return digits;
}

/// Of text engine data, with every byte of the name as a UTF-16 unit.
std::string ListedFont(std::string_view name) {
    std::string units = "\xFE\xFF";
    for (const char byte : name)
        units += std::string("\0", 1) + (byte == ')' || byte == '(' ? "\\" : "") + byte;
    return "<< /0 << /99 /CoolTypeFont /0 << /0 (" + units + ") /2 1 >> >> >> ";
}

std::string Layer(const std::string& name, const std::vector<std::string>& fonts) {
    std::string list;
    for (const std::string& font : fonts)
        list += ListedFont(font);
    return "<Layr><ldta bdata=\"00\"/><string>" + name + "</string><string>x</string><btdk bdata=\"" +
           Hex("/1 << /0 [ " + list + "] >> (not a font)") + "\"/></Layr>";
}

}  // namespace

TEST(SvgReader, TextTakesItsFontFromWhatIsNearest) {
    EXPECT_THAT(Fonts(Svg(R"(<title font-family="Aside">x</title>
<g font-family="'Comic Neue', sans-serif" font-weight="700"> <text id="a">x<tspan font-style="italic">y</tspan></text>
<text style="font-family:Beta;font-weight:normal">x</text><text font-family="sans-serif">x</text>
<text font-family='"Odd, Name",serif' font-weight="900">x</text><rect font-family="Unused"/></g><text>x</text>)")),
                ElementsAre("Beta | Beta | Regular | text", "Comic Neue Bold | Comic Neue | Bold | text a",
                            "Comic Neue Bold Italic | Comic Neue | Bold Italic | text a",
                            "Odd, Name Black | Odd, Name | Black | text"));
}

TEST(SvgReader, StyleSheetsCountByTheWeightOfTheirSelectors) {
    EXPECT_THAT(Fonts(Svg(R"(<text class="x cls-1" id="i">a</text><text class="cls-1">b</text><text>c</text>
<text class="own">d</text><text class="short">e</text>
<style>/* text{font-family:Comment} */ #i{font-family:Id} .cls-1{font-family:Early} .cls-1,.other{font-family:Class !important}
text{font-family:Element} g text{font-family:Nested} @media print{.cls-1{font-family:Print}}
@font-face{font-family:"Own";src:url(own.woff)} .own{font-family:Own}
<![CDATA[.short{font:italic 300 12px/1.5 "Short One", serif}]]></style>)")),
                ElementsAre("Class | Class |  | text", "Element | Element |  | text", "Id | Id |  | text i",
                            "Short One Light Italic | Short One | Light Italic | text"));
}

TEST(SvgReader, PostScriptNamesInPlaceOfFamiliesStayWhatTheyAre) {
    EXPECT_THAT(Fonts(Svg(R"(<text font-family="MyriadPro-Bold, Myriad Pro" font-weight="700">a</text>
<text font-family="'Minion-Italic'" font-weight="700">a</text>)")),
                ElementsAre("Minion-Italic |  |  | text", "MyriadPro-Bold | Myriad Pro | Bold | text"));
}

TEST(XmlDocuments, EntitiesOfTheirOwnStandForNothing) {
    std::string bomb = "<!DOCTYPE svg [<!ENTITY a0 \"lol\"><!ENTITY x SYSTEM \"file:///etc/passwd\">";
    for (int level = 1; level < 12; ++level)
        bomb += "<!ENTITY a" + std::to_string(level) + " \"" +
                Repeated("&a" + std::to_string(level - 1) + ";", 10) + "\">";
    EXPECT_THAT(Fonts(bomb + "]>" + Svg("<text font-family=\"A\">&a11;&x;b&amp;</text>")),
                ElementsAre("A | A |  | text"));
    EXPECT_THAT(Fonts(bomb + "]>" + Svg("<text font-family=\"&a11;\">b</text>")), testing::SizeIs(1));
}

TEST(XmlDocuments, WhatIsDamagedOrOverALimitIsOneLine) {
    EXPECT_THAT(Fonts("<svg><text>"), ElementsAre(testing::AllOf(HasSubstr("it is damaged: line 1: "),
                                                                 testing::Not(HasSubstr("invalid XML")))));
    EXPECT_THAT(Fonts("", "svg"), ElementsAre(HasSubstr("it is damaged")));
    EXPECT_THAT(Fonts(Svg(Repeated("<g>", 300) + Repeated("</g>", 300))),
                ElementsAre(HasSubstr("256 elements")));
    EXPECT_THAT(Fonts("<?xml version=\"1.0\" encoding=\"koi8-r\"?>" + Svg(""), "svg"),
                ElementsAre(HasSubstr("in the encoding KOI8-R")));
    std::string many;
    for (int index = 0; index < 10'000; ++index)
        many += "<text font-family=\"A" + std::to_string(index) + "\">x</text>";
    EXPECT_THAT(Fonts(Svg(many)), testing::SizeIs(10'000));
    EXPECT_THAT(Fonts(Svg(many + "<text font-family=\"B\">x</text>")),
                ElementsAre("it names more than 10000 fonts"));
    EXPECT_THAT(Fonts(Svg("<text font-family=\"" + std::string(513, 'A') + "\">x</text>")), IsEmpty());
}

TEST(Formats, TheContentGoesBeforeTheExtension) {
    const std::string svg = Svg("<text font-family=\"A\">x</text>");
    EXPECT_THAT(Fonts("\xEF\xBB\xBF<!-- a drawing -->\n" + svg, "pdf"), ElementsAre("A | A |  | text"));
    for (const char* other : {"<html/>", "<document/>"})
        EXPECT_THAT(Fonts(other, "xml"), ElementsAre("unknown"));
    EXPECT_THAT(Fonts("Dear reader", "Svg"), ElementsAre(HasSubstr("it is damaged")));
    EXPECT_THAT(Fonts(std::string("8BPS\0\1", 6), "psd"), ElementsAre("unknown"));
    EXPECT_THAT(Fonts("PK\3\4", "docx"), ElementsAre("unknown"));
}

TEST(AfterEffectsXmlReader, TextLayersNameTheirFontsAsInTheBinaryForm) {
    EXPECT_THAT(
        Fonts("<AfterEffectsProject>" +
              Layer("Title", {"Sample-Bold", "Myriad-Roman", "AdobeInvisFont", "Behind"}) +
              Layer("Body", {"Myriad-Roman", "Sample-Bold", "Par(en)", "AdobeInvisFont"}) +
              "<btdk bdata=\"2f436f6f6\"/><btdk bdata=\"zz\"/><btdk bdata=\"" +
              Hex("/CoolTypeFont (\xFE\xFF\x57\x8B)") + "\"/></AfterEffectsProject>"),
        ElementsAre("Myriad-Roman |  |  | text layer Body", "Par(en) |  |  | text layer Body",
                    "Sample-Bold |  |  | text layer Title, text layer Body", "型 |  |  | text layer Body"));
}

TEST(XmlReaders, PlacedFilesAreNamedAsEveryFormatDoes) {
    const std::pair<std::string, std::vector<std::string>> cases[] = {
        {R"(<AfterEffectsProject><fileReference fullpath="C:\art\a.ai"/></AfterEffectsProject>)",
         {"C:\\art\\a.ai"}},
        {R"(<SCRIBUSUTF8NEW><PAGEOBJECT PFILE="art/50%.pdf"/></SCRIBUSUTF8NEW>)", {"art/50%.pdf"}},
        {Svg(R"(<image href="file:///C:/a%20b.svg"/><image href="50%.svg"/><image href="//host/a.svg"/>)"),
         {"50%.svg", "C:/a b.svg"}},
        {R"(<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0">
<draw:image xmlns:draw="d" xmlns:xlink="l" xlink:href="a%20b.svg"/></office:document>)",
         {"a b.svg"}}};
    for (const auto& [document, placed] : cases)
        EXPECT_EQ(documents::ReadDocumentFonts(document, "").placed, placed) << document;
}

TEST(ScribusReader, TextsAndStylesNameFonts) {
    EXPECT_THAT(Fonts(R"(<SCRIBUSUTF8NEW><DOCUMENT DFONT="Unused Regular">
<STYLE NAME="Body" FONT="Sample Regular"/><CHARSTYLE CNAME="Loud" FONT="Sample Bold"/>
<PAGEOBJECT><ITEXT FONT="Sample Bold" CH="a"/></PAGEOBJECT></DOCUMENT></SCRIBUSUTF8NEW>)"),
                ElementsAre("Sample Bold |  |  | style Loud, text", "Sample Regular |  |  | style Body"));
}

TEST(OpenDocumentReader, TextLooksAsItsStylesAndThoseBelowThemSay) {
    const std::string head =
        R"(<office:document xmlns:office="urn:oasis:names:tc:opendocument:xmlns:office:1.0" xmlns:style="s" xmlns:svg="v" xmlns:fo="f" xmlns:text="t">
<office:font-face-decls><style:font-face style:name="F1" svg:font-family="'Comic Neue'"/>
<style:font-face style:name="F2" svg:font-family="Unused"/><style:font-face style:name="F3" svg:font-family="Own">
<svg:font-face-src/></style:font-face></office:font-face-decls><office:styles>
<style:default-style style:family="paragraph"><style:text-properties style:font-name="F1" style:font-name-asian="F2"/></style:default-style>
<style:style style:name="Loop" style:family="paragraph" style:parent-style-name="Loop"><style:text-properties fo:font-style="italic"/></style:style>
<style:style style:name="Head_1" style:display-name="Head 1" style:family="paragraph" style:parent-style-name="Loud"><style:text-properties fo:font-family="Beta"/></style:style>
<style:style style:name="Loud" style:family="paragraph"><style:text-properties fo:font-weight="bold"/></style:style></office:styles>)";
    const std::string body =
        R"(<office:automatic-styles><style:style style:name="T1" style:family="text"><style:text-properties fo:font-style="italic"/></style:style>
<style:style style:name="T2" style:family="text"><style:text-properties style:font-name="F3"/></style:style></office:automatic-styles>
<office:body><text:p text:style-name="Loud">a<text:span text:style-name="T1">b</text:span> <text:span text:style-name="T2">c</text:span></text:p>
<text:p text:style-name="Loop">d</text:p><text:p text:style-name="Head_1"> </text:p></office:body></office:document>)";
    EXPECT_THAT(Fonts(head + body), ElementsAre("Beta Bold | Beta | Bold | style Head 1",
                                                "Comic Neue | Comic Neue |  | the default style",
                                                "Comic Neue Bold | Comic Neue | Bold | text",
                                                "Comic Neue Bold Italic | Comic Neue | Bold Italic | text"));
}

#include "Qpdf.h"

#include <qpdf/QPDFWriter.hh>

#include "ReaderTest.h"

using documents::test::Fonts;
using documents::test::Repeated;
using testing::ElementsAre, testing::HasSubstr;

namespace {

/// A document of these objects, as PDF writes them, whose numbers are 1 and so on. The first is the catalogue.
std::string Pdf(const std::vector<std::string>& objects, bool isCompressed = true) {
    std::string text = "%PDF-1.4\n";
    int number = 0;
    for (const std::string& object : objects)
        text += std::to_string(++number) + " 0 obj\n" + object + "\nendobj\n";
    text += "trailer << /Root 1 0 R /Size 1 >>";
    QPDF pdf;
    pdf.setSuppressWarnings(true);  // of its table, which is made anew
    pdf.processMemoryFile("text", text.data(), text.size());
    QPDFWriter writer(pdf);
    writer.setOutputMemory();
    writer.setObjectStreamMode(isCompressed ? qpdf_o_generate : qpdf_o_disable);
    writer.write();
    const auto bytes = writer.getBufferSharedPointer();
    return {reinterpret_cast<char*>(bytes->getBuffer()), bytes->getSize()};
}

std::string Font(const std::string& name, const std::string& more = "") {
    return "<< /Type /Font /Subtype /Type1 /BaseFont /" + name + " " + more + " >>";
}
std::string Stream(const std::string& entries, const std::string& content = "") {
    return "<< " + entries + " /Length " + std::to_string(content.size()) + " >> stream\n" + content +
           "\nendstream";
}
std::string Page(const std::string& resources, const std::string& more = "") {
    return "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 9 9] /Resources << " + resources + " >> " + more +
           " >>";
}

}  // namespace

TEST(PdfReader, FontsAreFoundInAllThatIsDrawnOnPages) {
    const std::string form =
        Stream("/Subtype /Form /Resources << /XObject << /Loop 5 0 R >> /ExtGState << /S << /Font [" +
               Font("InState") + " 9] >> >> /Font << /F " + Font("InForm") +
               " /G << /Subtype /Type3 /BaseFont /Drawn /Resources << /Font << /F " + Font("InGlyphs") +
               " >> >> >> >> >>");
    const std::vector<std::string> objects = {
        "<< /Pages 2 0 R /AcroForm << /DR << /Font << /Helv " + Font("InField") + " /Other " +
            Font("Unused") + " >> >> >> >>",
        "<< /Type /Pages /Kids [3 0 R 4 0 R] /Count 2 >>",
        Page("/XObject << /X 5 0 R >> /Pattern << /P 6 0 R >>"),
        Page("/Font << /F " + Font("Helvetica") + " >>",
             "/Annots [<< /Subtype /Widget /DA (0 g /Helv 10 Tf) /AP << /N << /On 7 0 R >> >> >>]"),
        form,
        Stream("/PatternType 1 /Resources << /Font << /F " + Font("InPattern") + " >> >>"),
        Stream("/Subtype /Form /Resources << /Font << /F " + Font("InLook") + " >> >>")};
    for (const bool isCompressed : {true, false})
        EXPECT_THAT(Fonts(Pdf(objects, isCompressed)),
                    ElementsAre("Helvetica |  |  | page 2", "InField |  |  | page 2", "InForm |  |  | page 1",
                                "InGlyphs |  |  | page 1", "InLook |  |  | page 2",
                                "InPattern |  |  | page 1", "InState |  |  | page 1"));
}

TEST(PdfReader, NamesAreThoseOfTheFontsThemselves) {
    const std::string all =
        "/Font << /A << /Subtype /Type0 /BaseFont /Wide-Identity-H /DescendantFonts [<< /BaseFont "
        "/ABCDEF+Wide /FontDescriptor << /FontFamily (Wide Family) /FontFile2 1 >> >>] >> /B " +
        Font("AAAAAA+BBBBBB+Aptos#20Display", "/FontDescriptor << /FontFile3 1 >>") + " /C " +
        Font("Verdana,Bold") + " /D " + Font("#BA#DA") +
        " /E << /FontDescriptor << /FontName /Described >> >> /F << /Subtype /Type1 >> >>";
    EXPECT_THAT(
        Fonts(Pdf({"<< /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R 4 0 R 5 0 R 6 0 R 7 0 R] /Count 5 >>",
                   Page(all), Page(all), Page(all), Page(""), Page(all)})),
        ElementsAre("Aptos Display+ |  |  | pages 1-3, 5", "Described |  |  | pages 1-3, 5",
                    "Verdana,Bold | Verdana | Bold | pages 1-3, 5", "Wide+ | Wide Family |  | pages 1-3, 5",
                    "ºÚ |  |  | pages 1-3, 5"));
}

TEST(PdfReader, IllustratorsOwnListNamesFontsThatPagesDoNot) {
    const char* list =
        R"(<?xpacket?><x xmlns:f="f" xmlns:r="r"><f:Fonts><r:Bag>
<r:li>
<f:fontName>Note</f:fontName><f:fontFamily>N</f:fontFamily></r:li>
<r:li f:fontName="Arial-BoldMT" f:fontFamily="Arial" f:fontFace="Bold"/><r:li><f:fontName>Mix</f:fontName><f:composite>True</f:composite></r:li>
</r:Bag></f:Fonts><r:li f:fontName="Elsewhere"/></x>)";
    EXPECT_THAT(
        Fonts(Pdf({"<< /Pages 2 0 R /Metadata 4 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                   Page("/Font << /F " + Font("Note", "/FontDescriptor << /FontFile 1 >>") + " >>"),
                   Stream("", list)})),
        ElementsAre("Arial-BoldMT | Arial | Bold | the document's list of fonts", "Note+ | N |  | page 1"));
}

TEST(PdfReader, WhatIsDamagedIsReadAsFarAsItGoesOrIsOneLine) {
    std::string bytes = Pdf({"<< /Pages 2 0 R >>", "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
                             Page("/Font << /F " + Font("Sample") + " >>")},
                            false);
    bytes.erase(bytes.find("xref\n"));  // it is found again without its table
    EXPECT_THAT(Fonts("From: mail\n" + bytes + "trailer << /Root 1 0 R >>"),
                ElementsAre("Sample |  |  | page 1"));
    EXPECT_THAT(Fonts("%PDF-1.4\n"), ElementsAre(HasSubstr("it is damaged:")));
    EXPECT_THAT(Fonts("%PDF-1.4\n1 0 obj " + Repeated("[", 100'000)),
                ElementsAre(HasSubstr("it is damaged:")));
}

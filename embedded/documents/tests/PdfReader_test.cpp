#include "Qpdf.h"

#include <qpdf/QPDFWriter.hh>

#include "ReaderTest.h"

using documents::test::Fonts;
using documents::test::Repeated;
using testing::ElementsAre, testing::HasSubstr;

namespace {

using Object = QPDFObjectHandle;

/// A document in the making, with its dictionaries in the text form of PDF.
class TestPdf {
public:
    TestPdf() { mPdf.emptyPDF(); }

    Object Make(const std::string& text) { return mPdf.makeIndirectObject(Object::parse(text)); }
    /// A stream with those entries, of which R stands for the resources.
    Object MakeDrawing(const std::string& entries, Object resources) {
        Object stream = mPdf.newStream(" ");
        stream.replaceDict(Object::parse("<< " + entries + " >>"));
        stream.getDict().replaceKey("/Resources", resources);
        return stream;
    }
    Object MakeFont(const std::string& name, const std::string& more = "") {
        return Make("<< /Type /Font /Subtype /Type1 /BaseFont /" + name + " " + more + " >>");
    }
    /// Resources in which the objects go by the names of their kinds: "/Font", "/XObject".
    static Object Resources(const std::vector<std::pair<std::string, Object>>& objects) {
        Object resources = Object::newDictionary();
        int number = 0;
        for (const auto& [kind, object] : objects) {
            if (!resources.hasKey(kind))
                resources.replaceKey(kind, Object::newDictionary());
            resources.getKey(kind).replaceKey("/N" + std::to_string(++number), object);
        }
        return resources;
    }
    Object AddPage(Object resources) {
        Object page = Make("<< /Type /Page /MediaBox [0 0 9 9] >>");
        page.replaceKey("/Resources", resources);
        mPdf.addPage(page, false);
        return page;
    }
    Object Root() { return mPdf.getRoot(); }
    std::string Bytes(bool isCompressed = true) {
        QPDFWriter writer(mPdf);
        writer.setOutputMemory();
        writer.setObjectStreamMode(isCompressed ? qpdf_o_generate : qpdf_o_disable);
        writer.write();
        const auto bytes = writer.getBufferSharedPointer();
        return {reinterpret_cast<char*>(bytes->getBuffer()), bytes->getSize()};
    }
    Object MakeStream(const std::string& content) { return mPdf.newStream(content); }

private:
    QPDF mPdf;
};

}  // namespace

TEST(PdfReader, FontsAreFoundInAllThatIsDrawnOnPages) {
    TestPdf pdf;
    const auto font = [&](const char* name) { return std::pair("/Font", pdf.MakeFont(name)); };
    Object glyphs = pdf.Make("<< /Subtype /Type3 /BaseFont /Drawn >>");
    glyphs.replaceKey("/Resources", TestPdf::Resources({font("InGlyphs")}));
    Object state = pdf.Make("<< >>");
    state.replaceKey("/Font", Object::newArray({font("InState").second, Object::newInteger(9)}));
    auto form = pdf.MakeDrawing(
        "/Subtype /Form", TestPdf::Resources({font("InForm"), {"/Font", glyphs}, {"/ExtGState", state}}));
    form.getDict().getKey("/Resources").replaceKey("/XObject", Object::parse("<< >>"));
    form.getDict().getKey("/Resources").getKey("/XObject").replaceKey("/Loop", form);
    const auto pattern = pdf.MakeDrawing("/PatternType 1", TestPdf::Resources({font("InPattern")}));
    pdf.AddPage(TestPdf::Resources({{"/XObject", form}, {"/Pattern", pattern}}));
    Object page = pdf.AddPage(TestPdf::Resources({font("Helvetica")}));
    Object look = Object::newDictionary();
    look.replaceKey("/On", pdf.MakeDrawing("/Subtype /Form", TestPdf::Resources({font("InLook")})));
    Object annotation = Object::parse("<< /Subtype /Widget /DA (0 g /Helv 10 Tf) >>");
    annotation.replaceKey("/AP", Object::newDictionary(std::map<std::string, Object>{{"/N", look}}));
    page.replaceKey("/Annots", Object::newArray({annotation}));
    Object fields = Object::parse("<< /DR << /Font << >> >> >>");
    fields.getKey("/DR").getKey("/Font").replaceKey("/Helv", font("InField").second);
    fields.getKey("/DR").getKey("/Font").replaceKey("/Other", font("Unused").second);
    pdf.Root().replaceKey("/AcroForm", fields);
    for (const bool isCompressed : {true, false})
        EXPECT_THAT(Fonts(pdf.Bytes(isCompressed)),
                    ElementsAre("Helvetica |  |  | page 2", "InField |  |  | page 2", "InForm |  |  | page 1",
                                "InGlyphs |  |  | page 1", "InLook |  |  | page 2",
                                "InPattern |  |  | page 1", "InState |  |  | page 1"));
}

TEST(PdfReader, NamesAreThoseOfTheFontsThemselves) {
    TestPdf pdf;
    const Object composite = pdf.Make(
        "<< /Subtype /Type0 /BaseFont /Wide-Identity-H /DescendantFonts [ << /BaseFont /ABCDEF+Wide "
        "/FontDescriptor << /FontFamily (Wide Family) /FontFile2 1 >> >> ] >>");
    const Object resources = TestPdf::Resources(
        {{"/Font", composite},
         {"/Font", pdf.MakeFont("AAAAAA+BBBBBB+Aptos#20Display", "/FontDescriptor << /FontFile3 1 >>")},
         {"/Font", pdf.MakeFont("Verdana,Bold")},
         {"/Font", pdf.MakeFont("#BA#DA")},
         {"/Font", pdf.Make("<< /FontDescriptor << /FontName /Described >> >>")},
         {"/Font", pdf.Make("<< /Subtype /Type1 >>")}});
    for (const int number : {1, 2, 3, 4, 5}) {
        Object own = number == 4 ? Object::newDictionary() : resources;
        pdf.AddPage(own);
    }
    EXPECT_THAT(Fonts(pdf.Bytes()),
                ElementsAre("Aptos Display+ |  |  | pages 1-3, 5", "Described |  |  | pages 1-3, 5",
                            "Verdana,Bold | Verdana | Bold | pages 1-3, 5",
                            "Wide+ | Wide Family |  | pages 1-3, 5", "ºÚ |  |  | pages 1-3, 5"));
}

TEST(PdfReader, IllustratorsOwnListNamesFontsThatPagesDoNot) {
    TestPdf pdf;
    pdf.AddPage(TestPdf::Resources({{"/Font", pdf.MakeFont("Note", "/FontDescriptor << /FontFile 1 >>")}}));
    pdf.Root().replaceKey(
        "/Metadata",
        pdf.MakeStream(
            R"(<?xpacket?><x xmlns:f="f" xmlns:r="r"><f:Fonts><r:Bag><r:li><f:fontName>Note</f:fontName><f:fontFamily>N</f:fontFamily></r:li>
<r:li f:fontName="Arial-BoldMT" f:fontFamily="Arial" f:fontFace="Bold"/><r:li><f:fontName>Mix</f:fontName><f:composite>True</f:composite></r:li>
</r:Bag></f:Fonts><r:li f:fontName="Elsewhere"/></x>)"));
    EXPECT_THAT(Fonts(pdf.Bytes()), ElementsAre("Arial-BoldMT | Arial | Bold | the document's list of fonts",
                                                "Note+ | N |  | page 1"));
}

TEST(PdfReader, WhatIsDamagedIsReadAsFarAsItGoesOrIsOneLine) {
    TestPdf pdf;
    pdf.AddPage(TestPdf::Resources({{"/Font", pdf.MakeFont("Sample")}}));
    std::string bytes = pdf.Bytes(false);
    bytes.erase(bytes.find("xref\n"));  // it is found again without its table
    EXPECT_THAT(Fonts("From: mail\n" + bytes + "trailer << /Root 1 0 R >>"),
                ElementsAre("Sample |  |  | page 1"));
    EXPECT_THAT(Fonts("%PDF-1.4\n"), ElementsAre(HasSubstr("it is damaged:")));
    EXPECT_THAT(Fonts("%PDF-1.4\n1 0 obj " + Repeated("[", 100'000)),
                ElementsAre(HasSubstr("it is damaged:")));
}

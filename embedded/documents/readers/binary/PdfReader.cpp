#include <map>

#include "DocumentLimits.h"
#include "PdfFont.h"
#include "PdfPage.h"
#include "Qpdf.h"
#include "ReadProblem.h"
#include "Readers.h"
#include "XmpFonts.h"

namespace documents {
namespace {

using Object = QPDFObjectHandle;

/// What a stream holds; nothing where it is damaged.
std::string ContentOf(Object stream) {
    try {
        const auto bytes = stream.isStream() ? stream.getStreamData(qpdf_dl_generalized) : nullptr;
        return bytes ? std::string(reinterpret_cast<char*>(bytes->getBuffer()), bytes->getSize()) : "";
    } catch (const std::runtime_error&) {
        return {};
    }
}

class PdfFonts {
public:
    explicit PdfFonts(Object root)
        : mFormFonts(root.getKeyIfDict("/AcroForm").getKeyIfDict("/DR").getKeyIfDict("/Font")) {}

    void Visit(int number, const QPDFPageObjectHelper& page) {
        for (const Object& font : FontsOfPage(page, mFormFonts, mVisitsLeft))
            Note(number, font);
    }
    /// Those that the document's own list names, whether pages use them or not.
    void NoteListed(const Object& metadata) {
        for (DocumentFont& font : ReadXmpFonts(ContentOf(metadata))) {
            font.postScriptName = WithoutSubsetTags(font.postScriptName);
            font.isEmbedded = mUses.contains(font.postScriptName);
            Merge(std::move(font));
        }
    }
    void AddTo(FontList& fonts) {
        for (auto& [name, use] : mUses) {
            use.font.where = use.pages.empty() ? "the document's list of fonts" : PagesText(use.pages);
            fonts.Add(std::move(use.font));
        }
    }

private:
    struct Use {
        DocumentFont font;
        std::vector<int> pages;
    };

    void Note(int number, const Object& font) {
        Use& use = UseOf(font);
        if (use.pages.empty() || use.pages.back() != number)
            use.pages.push_back(number);
    }
    Use& UseOf(const Object& dictionary) {
        const auto known = mKnown.find(dictionary.getObjGen());
        if (dictionary.isIndirect() && known != mKnown.end())
            return *known->second;
        Use& use = Merge(FontOf(dictionary));
        mKnown[dictionary.getObjGen()] = &use;
        return use;
    }
    /// Fonts of one name are one, however many dictionaries they have.
    Use& Merge(DocumentFont font) {
        const auto [found, isNew] = mUses.try_emplace(font.postScriptName);
        Use& use = found->second;
        font.isEmbedded = font.isEmbedded && (isNew || use.font.isEmbedded);
        if (font.family.empty()) {
            font.family = use.font.family;
            font.style = use.font.style;
        }
        use.font = std::move(font);
        return use;
    }

    size_t mVisitsLeft = kMaxPdfVisits;
    Object mFormFonts;
    std::map<std::string, Use> mUses;
    std::map<QPDFObjGen, Use*> mKnown;  ///< by dictionary
};

void Open(QPDF& pdf, std::string_view content) {
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(content.data()));
    pdf.setSuppressWarnings(true);
    pdf.processInputSource(
        std::make_shared<BufferInputSource>("document", new Buffer(bytes, content.size()), true));
}

void ReadPdf(std::string_view content, FontList& fonts) {
    try {
        QPDF pdf;
        Open(pdf, content);
        PdfFonts found(pdf.getRoot());
        int number = 0;
        for (const QPDFPageObjectHelper& page : QPDFPageDocumentHelper(pdf).getAllPages())
            found.Visit(++number, page);
        if (number == 0)
            throw ReadProblem("is damaged: it has no pages");
        found.NoteListed(pdf.getRoot().getKey("/Metadata"));
        found.AddTo(fonts);
    } catch (const QPDFExc& problem) {
        throw ReadProblem(problem.getErrorCode() == qpdf_e_password
                              ? "is locked by a password"
                              : "is damaged: " + problem.getMessageDetail());
    } catch (const ReadProblem&) {
        throw;
    } catch (const std::runtime_error& problem) {
        throw ReadProblem(std::string("is damaged: ") + problem.what());
    } catch (const std::logic_error& problem) {  // what the library did not expect
        throw ReadProblem(std::string("is damaged: ") + problem.what());
    }
}

}  // namespace

/// And what is PDF as well, such as Illustrator documents: the fonts in the resources of pages, of the forms and
/// patterns on them, and of annotations' looks.
const Format kPdfFormat = {
    .name = "pdf",
    .read = ReadPdf,
    .form = Form::kBytes,
    .mark = "%PDF-",
    .extensions = {"pdf"},
};

}  // namespace documents

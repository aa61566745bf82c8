#include <algorithm>
#include <qpdf/Buffer.hh>
#include <qpdf/BufferInputSource.hh>
#include <qpdf/QPDF.hh>
#include <qpdf/QPDFPageDocumentHelper.hh>
#include <set>

#include "DocumentLimits.h"
#include "ReadProblem.h"
#include "Readers.h"
#include "StringConversion.h"

namespace documents {
namespace {

using Object = QPDFObjectHandle;

/// Names are UTF-8 today and were any bytes once, which read as Latin-1 then.
std::string TextOf(const std::string& bytes) {
    if (IsValidUtf8(bytes))
        return bytes;
    std::u16string units;
    for (const char byte : bytes)
        units.push_back(static_cast<unsigned char>(byte));
    return Utf16ToUtf8(units);
}

/// "ABCDEF+", in front of the name of a font of which a part is embedded.
bool HasSubsetTag(std::string_view name) {
    constexpr size_t kLength = 6;
    return name.size() > kLength && name[kLength] == '+' &&
           std::all_of(name.begin(), name.begin() + kLength,
                       [](char each) { return each >= 'A' && each <= 'Z'; });
}

/// Some programs put a tag in front of a tag.
std::string FontName(Object name) {
    std::string text = name.isName() ? TextOf(name.getName().substr(1)) : "";
    while (HasSubsetTag(text))
        text.erase(0, text.find('+') + 1);
    return text;
}

/// Of a dictionary or a stream.
Object Entry(Object holder, const std::string& key) {
    return holder.isStream() ? holder.getDict().getKey(key) : holder.getKeyIfDict(key);
}

template <class Visit>
void ForEachValue(Object dictionary, const Visit& visit) {
    if (!dictionary.isDictionary())
        return;
    for (auto& [key, value] : dictionary.getDictAsMap())
        visit(value);
}

/// The font that has the glyphs: what a composite font is composed of.
Object SimpleFont(Object font) {
    const Object descendants = font.getKeyIfDict("/DescendantFonts");
    return Object(descendants).isArray() ? Object(descendants).getArrayItem(0) : font;
}

bool IsEmbedded(Object descriptor) {
    for (const char* file : {"/FontFile", "/FontFile2", "/FontFile3"}) {
        if (!descriptor.getKeyIfDict(file).isNull())
            return true;
    }
    return false;
}

/// A TrueType font without a PostScript name stands as "Family,Style" (ISO 32000-1, 9.6.3).
void SplitTrueTypeName(DocumentFont& font) {
    const size_t comma = font.postScriptName.find(',');
    if (comma == std::string::npos || comma == 0 || !font.family.empty())
        return;
    font.family = font.postScriptName.substr(0, comma);
    font.style = font.postScriptName.substr(comma + 1);
}

/// What there is to tell of a font dictionary; without a name where it draws its glyphs itself.
DocumentFont FontOf(Object dictionary) {
    Object font = SimpleFont(dictionary);
    Object descriptor = font.getKeyIfDict("/FontDescriptor");
    Object family = descriptor.getKeyIfDict("/FontFamily");
    DocumentFont result;
    result.postScriptName = FontName(font.getKeyIfDict("/BaseFont"));
    if (result.postScriptName.empty())
        result.postScriptName = FontName(descriptor.getKeyIfDict("/FontName"));
    if (family.isString())
        result.family = family.getUTF8Value();
    result.isEmbedded = IsEmbedded(descriptor);
    SplitTrueTypeName(result);
    return result;
}

bool IsType3(Object font) {
    Object subtype = font.getKeyIfDict("/Subtype");
    return subtype.isName() && subtype.getName() == "/Type3";
}

/// The fonts of one page, through all that is drawn on it. Each object is visited once, and what is still to
/// be visited is kept in a list: documents may hold loops, and forms within forms without end.
class PageFonts {
public:
    explicit PageFonts(size_t& visitsLeft) : mVisitsLeft(visitsLeft) {}

    /// `page`: whose resources count, inherited ones included.
    void Visit(Object page, Object resources) {
        Enter(resources, &PageFonts::VisitResources);
        const Object annotations = page.getKeyIfDict("/Annots");
        if (Object(annotations).isArray()) {
            for (Object& annotation : Object(annotations).getArrayAsVector())
                Enter(annotation.getKeyIfDict("/AP"), &PageFonts::VisitLooks);
        }
        while (!mWaiting.empty()) {
            const auto [object, visit] = mWaiting.back();
            mWaiting.pop_back();
            (this->*visit)(object);
        }
    }
    std::vector<Object>& Fonts() { return mFonts; }

private:
    using Visitor = void (PageFonts::*)(Object);

    void Enter(Object object, Visitor visit) {
        if (object.isNull() || (object.isIndirect() && !mSeen.insert(object.getObjGen()).second))
            return;
        if (mVisitsLeft-- == 0) {
            mVisitsLeft = 0;
            throw ReadProblem("has more parts than can be looked at");
        }
        mWaiting.emplace_back(object, visit);
    }
    void VisitResources(Object resources) {
        ForEachValue(resources.getKeyIfDict("/Font"),
                     [&](Object font) { Enter(font, &PageFonts::VisitFont); });
        for (const char* drawings : {"/XObject", "/Pattern"})
            ForEachValue(resources.getKeyIfDict(drawings),
                         [&](Object drawing) { Enter(drawing, &PageFonts::VisitDrawing); });
        ForEachValue(resources.getKeyIfDict("/ExtGState"),
                     [&](Object state) { Enter(state, &PageFonts::VisitState); });
    }
    void VisitFont(Object font) {
        if (IsType3(font))
            VisitDrawing(font);
        else
            mFonts.push_back(font);
    }
    /// What has resources of its own.
    void VisitDrawing(Object drawing) { Enter(Entry(drawing, "/Resources"), &PageFonts::VisitResources); }
    void VisitState(Object state) {
        Object font = state.getKeyIfDict("/Font");
        if (font.isArray() && font.getArrayNItems() > 0)
            Enter(font.getArrayItem(0), &PageFonts::VisitFont);
        Enter(state.getKeyIfDict("/SMask").getKeyIfDict("/G"), &PageFonts::VisitDrawing);
        ForEachValue(state.getKeyIfDict("/Pattern"),
                     [&](Object drawing) { Enter(drawing, &PageFonts::VisitDrawing); });
    }
    /// How an annotation looks, in each of its states.
    void VisitLooks(Object looks) {
        if (looks.isStream())
            VisitDrawing(looks);
        else
            ForEachValue(looks, [&](Object look) { Enter(look, &PageFonts::VisitLooks); });
    }

    size_t& mVisitsLeft;
    std::set<QPDFObjGen> mSeen;
    std::vector<std::pair<Object, Visitor>> mWaiting;
    std::vector<Object> mFonts;
};

class PdfFonts {
public:
    void Visit(int number, QPDFPageObjectHelper page) {
        PageFonts fonts(mVisitsLeft);
        fonts.Visit(page.getObjectHandle(), page.getAttribute("/Resources", false));
        for (Object& font : fonts.Fonts())
            Note(number, font);
    }
    void AddTo(FontList& fonts) {
        for (Use& use : mUses) {
            use.font.where = PagesText(use.pages);
            fonts.Add(std::move(use.font));
        }
    }

private:
    struct Use {
        DocumentFont font;
        std::vector<int> pages;
    };

    void Note(int number, Object font) {
        Use& use = UseOf(font);
        if (use.pages.empty() || use.pages.back() != number)
            use.pages.push_back(number);
    }
    /// Fonts of one name are one, however many dictionaries they have.
    Use& UseOf(Object dictionary) {
        const auto known = mKnown.find(dictionary.getObjGen());
        if (dictionary.isIndirect() && known != mKnown.end())
            return mUses[known->second];
        DocumentFont font = FontOf(dictionary);
        const auto [named, isNew] = mNamed.emplace(std::pair(font.postScriptName, font.family), mUses.size());
        if (isNew)
            mUses.push_back({std::move(font), {}});
        else
            mUses[named->second].font.isEmbedded &= font.isEmbedded;
        mKnown[dictionary.getObjGen()] = named->second;
        return mUses[named->second];
    }

    size_t mVisitsLeft = kMaxPdfVisits;
    std::map<QPDFObjGen, size_t> mKnown;
    std::map<std::pair<std::string, std::string>, size_t> mNamed;
    std::vector<Use> mUses;
};

void Open(QPDF& pdf, std::string_view content) {
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(content.data()));
    pdf.setSuppressWarnings(true);
    pdf.processInputSource(
        std::make_shared<BufferInputSource>("document", new Buffer(bytes, content.size()), true));
}

}  // namespace

void ReadPdf(std::string_view content, FontList& fonts) {
    try {
        QPDF pdf;
        Open(pdf, content);
        PdfFonts found;
        int number = 0;
        for (const QPDFPageObjectHelper& page : QPDFPageDocumentHelper(pdf).getAllPages())
            found.Visit(++number, page);
        if (number == 0)
            throw ReadProblem("is damaged: it has no pages");
        found.AddTo(fonts);
    } catch (const QPDFExc& problem) {
        throw ReadProblem(problem.getErrorCode() == qpdf_e_password
                              ? "is locked by a password"
                              : "is damaged: " + problem.getMessageDetail());
    } catch (const std::logic_error& problem) {  // what the library did not expect
        throw ReadProblem(std::string("is damaged: ") + problem.what());
    }
}

}  // namespace documents

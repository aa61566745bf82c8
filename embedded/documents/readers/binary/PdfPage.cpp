#include "PdfPage.h"

#include <set>
#include <sstream>
#include <utility>

#include "PdfFont.h"
#include "ReadProblem.h"

namespace documents {
namespace {

using Object = QPDFObjectHandle;

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

/// The name in "/Helv 10 Tf 0 g", with which a form field's text begins; empty without one.
std::string FontOfAppearance(const std::string& operators) {
    std::istringstream words(operators);
    std::string name;
    std::string size;
    for (std::string word; words >> word; name = size, size = word) {
        if (word == "Tf")
            return name;
    }
    return {};
}

/// What a form field has itself or takes over from those that it is a part of.
Object FieldEntry(Object field, const std::string& key) {
    constexpr int kMaxAncestors = 32;  // a hostile field is a part of itself
    for (int left = kMaxAncestors; left > 0 && field.isDictionary(); --left) {
        Object value = field.getKey(key);
        if (!value.isNull())
            return value;
        field = field.getKey("/Parent");
    }
    return Object::newNull();
}

/// The fonts of one page, through all that is drawn on it. Each object is visited once, and what is still to
/// be visited is kept in a list: documents may hold loops, and forms within forms without end.
class PageFonts {
public:
    /// `formFonts`: by the names that fields use for them.
    PageFonts(const Object& formFonts, size_t& visitsLeft) : mFormFonts(formFonts), mVisitsLeft(visitsLeft) {}

    /// `page`: whose resources count, inherited ones included.
    void Visit(Object page, const Object& resources) {
        Enter(resources, &PageFonts::VisitResources);
        Object annotations = page.getKeyIfDict("/Annots");
        if (annotations.isArray()) {
            for (Object& annotation : annotations.getArrayAsVector())
                Enter(annotation, &PageFonts::VisitAnnotation);
        }
        while (!mWaiting.empty()) {
            auto [object, visit] = mWaiting.back();
            mWaiting.pop_back();
            (this->*visit)(object);
        }
    }
    std::vector<Object>& Fonts() { return mFonts; }

private:
    using Visitor = void (PageFonts::*)(Object&);  // qpdf's objects are handles, and their getters not const

    void Enter(Object object, Visitor visit) {
        if (object.isNull() || (object.isIndirect() && !mSeen.insert(object.getObjGen()).second))
            return;
        if (mVisitsLeft-- == 0) {
            mVisitsLeft = 0;
            throw ReadProblem("has more parts than can be looked at");
        }
        mWaiting.emplace_back(object, visit);
    }
    void VisitResources(Object& resources) {
        ForEachValue(resources.getKeyIfDict("/Font"),
                     [&](const Object& font) { Enter(font, &PageFonts::VisitFont); });
        for (const char* drawings : {"/XObject", "/Pattern"})
            ForEachValue(resources.getKeyIfDict(drawings),
                         [&](const Object& drawing) { Enter(drawing, &PageFonts::VisitDrawing); });
        ForEachValue(resources.getKeyIfDict("/ExtGState"),
                     [&](const Object& state) { Enter(state, &PageFonts::VisitState); });
    }
    void VisitFont(Object& font) {
        if (IsType3(font))
            VisitDrawing(font);
        else
            mFonts.push_back(font);
    }
    /// What has resources of its own.
    void VisitDrawing(Object& drawing) { Enter(Entry(drawing, "/Resources"), &PageFonts::VisitResources); }
    void VisitState(Object& state) {
        Object font = state.getKeyIfDict("/Font");
        if (font.isArray() && font.getArrayNItems() > 0)
            Enter(font.getArrayItem(0), &PageFonts::VisitFont);
        Enter(state.getKeyIfDict("/SMask").getKeyIfDict("/G"), &PageFonts::VisitDrawing);
    }
    void VisitAnnotation(Object& annotation) {
        Enter(annotation.getKeyIfDict("/AP"), &PageFonts::VisitLooks);
        Object appearance = FieldEntry(annotation, "/DA");
        if (appearance.isString())
            Enter(mFormFonts.getKeyIfDict(FontOfAppearance(appearance.getStringValue())),
                  &PageFonts::VisitFont);
    }
    /// How an annotation looks, in each of its states.
    void VisitLooks(Object& looks) {
        if (looks.isStream())
            VisitDrawing(looks);
        else
            ForEachValue(looks, [&](const Object& look) { Enter(look, &PageFonts::VisitLooks); });
    }

    Object mFormFonts;
    size_t& mVisitsLeft;
    std::set<QPDFObjGen> mSeen;
    std::vector<std::pair<Object, Visitor>> mWaiting;
    std::vector<Object> mFonts;
};

}  // namespace

std::vector<Object> FontsOfPage(QPDFPageObjectHelper page, const Object& formFonts, size_t& visitsLeft) {
    PageFonts fonts(formFonts, visitsLeft);
    fonts.Visit(page.getObjectHandle(), page.getAttribute("/Resources", false));
    return std::move(fonts.Fonts());
}

}  // namespace documents

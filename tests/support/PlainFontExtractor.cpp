#include "PlainFontExtractor.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <vector>

namespace {

using Names = std::set<std::string>;

struct Range {
    size_t begin;
    size_t end;
};

struct FoundRanges {
    std::vector<Range> whole;
    std::optional<size_t> cut;
};

size_t Find(const std::string& bytes, const std::string& pattern, size_t from, size_t to) {
    for (size_t at = from; at + pattern.size() <= to; ++at) {
        if (bytes.compare(at, pattern.size(), pattern) == 0)
            return at;
    }
    return std::string::npos;
}

size_t FindUnescaped(const std::string& bytes, const std::string& pattern, size_t from, size_t to) {
    for (size_t at = Find(bytes, pattern, from, to); at != std::string::npos;
         at = Find(bytes, pattern, at + 1, to)) {
        if (at - from < 2 || bytes[at - 1] != '\\')
            return at;
    }
    return std::string::npos;
}

FoundRanges FindRanges(const std::string& bytes, Range span, const std::string& start,
                       const std::string& name, const std::string& end) {
    FoundRanges found;
    size_t position = span.begin;
    for (;;) {
        const size_t startAt = FindUnescaped(bytes, start, position, span.end);
        if (startAt == std::string::npos)
            return found;
        const size_t endAt = Find(bytes, end, startAt + start.size(), span.end);
        if (endAt == std::string::npos) {
            found.cut = startAt;
            return found;
        }
        const size_t nameAt = FindUnescaped(bytes, name, startAt, endAt);
        if (nameAt != std::string::npos)
            found.whole.push_back({nameAt, endAt});
        position = endAt + end.size();
    }
}

std::string NameAt(const std::string& bytes, size_t begin, size_t end, const std::string& separator,
                   char endByte) {
    const size_t separatorAt = Find(bytes, separator, begin, end);
    if (separatorAt != std::string::npos)
        begin = separatorAt + separator.size();
    size_t last = end;
    while (last > begin && (bytes[last - 1] < 0x21 || bytes[last - 1] > 0x7E || bytes[last - 1] == endByte))
        --last;
    if (last == begin)
        last = end;
    std::string name;
    for (size_t at = begin; at < last; ++at) {
        const auto byte = static_cast<unsigned char>(bytes[at]);
        if (byte >= 0x80) {
            name += static_cast<char>(0xC0 | (byte >> 6));
            name += static_cast<char>(0x80 | (byte & 0x3F));
        } else if (byte != 0) {
            name += static_cast<char>(byte);
        }
    }
    return name;
}

struct Markers {
    std::string start, name, separator, nameEnd, end;
};

std::vector<std::vector<std::string>> NamesByRange(const std::string& bytes, Range span,
                                                   const Markers& markers, size_t& resume) {
    std::vector<std::vector<std::string>> lists;
    const FoundRanges ranges = FindRanges(bytes, span, markers.start, markers.name, markers.end);
    if (ranges.cut && *ranges.cut != 0)
        resume = *ranges.cut;
    for (const Range& range : ranges.whole) {
        lists.emplace_back();
        for (const Range& each : FindRanges(bytes, range, markers.name, markers.name, markers.nameEnd).whole)
            lists.back().push_back(NameAt(bytes, each.begin + markers.name.size(), each.end,
                                          markers.separator, markers.nameEnd[0]));
    }
    return lists;
}

/// One kind of document: searches a chunk, adds to the names, answers with the offset to resume at.
class Kind {
public:
    virtual ~Kind() = default;
    virtual size_t Search(const std::string& chunk, Names& names) = 0;
    virtual size_t StartLength() const = 0;

    void Run(const std::string& content, size_t chunkSize, Names& names) {
        for (size_t position = 0; position < content.size();) {
            const size_t resume = Search(content.substr(position, chunkSize), names);
            position += resume != 0 ? resume : chunkSize - StartLength();
        }
    }
};

class Illustrator : public Kind {
    Names mRunning;

    size_t StartLength() const override { return 9; }
    size_t Search(const std::string& chunk, Names& names) override {
        size_t resume = 0;
        for (const char* name : {"/FontName /", "/FontName/"}) {
            size_t passResume = 0;
            for (const auto& list :
                 NamesByRange(chunk, {0, chunk.size()}, {"/FontName", name, "+", "/", ">>"}, passResume))
                mRunning.insert(list.begin(), list.end());
            const bool isDefaultAlone =
                mRunning.size() == 1 && mRunning.begin()->find("MyriadPro-Regular") != std::string::npos;
            if (!isDefaultAlone)
                names.insert(mRunning.begin(), mRunning.end());
            if (resume == 0)
                resume = passResume;
        }
        return resume;
    }
};

class Photoshop : public Kind {
    size_t StartLength() const override { return 10; }
    size_t Search(const std::string& chunk, Names& names) override {
        size_t resume = 0;
        for (const auto& list : NamesByRange(chunk, {0, chunk.size()},
                                             {"/FontSet [", "/Name (", "\xFE\xFF", ")", "]"}, resume)) {
            for (size_t index = 0; index < list.size(); ++index) {
                if (list[index] == "AdobeInvisFont" && index > 0)
                    break;
                if (list[index] != "AdobeInvisFont")
                    names.insert(list[index]);
            }
        }
        return resume;
    }
};

class AfterEffects : public Kind {
    size_t StartLength() const override { return 19; }
    size_t Search(const std::string& chunk, Names& names) override {
        const FoundRanges layers =
            FindRanges(chunk, {0, chunk.size()}, ">> /0 << /1 << /0 [", "<< /99 /CoolTypeFont /0", "] >>");
        for (const Range& layer : layers.whole)
            TakeLayer(chunk, layer, names);
        return layers.cut.value_or(0);
    }
    static void TakeLayer(const std::string& chunk, const Range& layer, Names& names) {
        size_t unused = 0;
        bool isDefaultInFirst = false;
        const auto lists =
            NamesByRange(chunk, layer, {"<< /99 /CoolTypeFont /0", "/0 (", "\xFE\xFF", ") ", ">>"}, unused);
        for (size_t index = 0; index < lists.size(); ++index) {
            for (const std::string& name : lists[index]) {
                if (name == "AdobeInvisFont") {
                    if (isDefaultInFirst)
                        names.insert("Myriad-Roman");
                    return;
                }
                if (name != "Myriad-Roman")
                    names.insert(name);
                else if (index == 0)
                    isDefaultInFirst = true;
            }
        }
    }
};

}  // namespace

std::set<std::string> PlainFontNames(const std::string& extension, const std::string& content,
                                     size_t chunkSize) {
    const auto is = [&](std::initializer_list<const char*> extensions) {
        return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
    };
    const bool isIllustrator = is({"ai", "ait", "pdf"});
    const bool isPhotoshop = is({"psd", "psb"});
    const bool isAfterEffects = is({"aep", "aet", "aepx"});
    const bool isUnknown = !isIllustrator && !isPhotoshop && !isAfterEffects && extension != "eps";
    Names names;
    if (isIllustrator || isUnknown)
        Illustrator().Run(content, chunkSize, names);
    if (isPhotoshop || isUnknown)
        Photoshop().Run(content, chunkSize, names);
    if (isAfterEffects || isUnknown)
        AfterEffects().Run(content, chunkSize, names);
    return names;
}

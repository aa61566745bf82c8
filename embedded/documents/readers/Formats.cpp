#include "Formats.h"

#include <algorithm>
#include <new>
#include <string>

#include "ReadProblem.h"
#include "Readers.h"
#include "StringConversion.h"
#include "XmlParser.h"

namespace documents {
namespace {

constexpr Format kAfterEffectsXml{"aepx", ReadAfterEffectsXml};
constexpr Format kSvg{"svg", ReadSvg};
constexpr Format kFlatOpenDocument{"opendocument", ReadFlatOpenDocument};
constexpr Format kScribus{"sla", ReadScribus};

constexpr FormatExtension kXmlExtensions[] = {{"aepx", &kAfterEffectsXml},  {"svg", &kSvg},
                                              {"sla", &kScribus},           {"fodt", &kFlatOpenDocument},
                                              {"fods", &kFlatOpenDocument}, {"fodp", &kFlatOpenDocument},
                                              {"fodg", &kFlatOpenDocument}};

/// Learns the name of a document's outermost element, and stops there.
class RootListener : public XmlListener {
public:
    struct Found {};
    void OnStart(const XmlElement& element) override {
        root = element.name;
        throw Found();
    }
    std::string root;
};

/// Enough for the comments and declarations before the outermost element.
std::string_view Beginning(std::string_view content) {
    return content.substr(0, size_t{64} << 10);
}

std::string RootOf(std::string_view content) {
    RootListener listener;
    try {
        ReadXml(Beginning(content), listener);
    } catch (const RootListener::Found&) {
    } catch (const ReadProblem&) {
    }
    return listener.root;
}

const Format* FormatOfXml(std::string_view content) {
    constexpr std::string_view kByteOrderMarks[] = {"\xEF\xBB\xBF", "\xFE\xFF", "\xFF\xFE"};
    const bool isMarked = std::any_of(std::begin(kByteOrderMarks), std::end(kByteOrderMarks),
                                      [&](std::string_view mark) { return content.starts_with(mark); });
    const size_t begin = content.find_first_not_of(" \t\r\n");
    if (!isMarked && (begin == std::string_view::npos || content[begin] != '<'))
        return nullptr;
    const std::string root = RootOf(content);
    if (root == "AfterEffectsProject")
        return &kAfterEffectsXml;
    if (root == "svg")
        return &kSvg;
    if (root == "document" &&
        Beginning(content).find("urn:oasis:names:tc:opendocument") != std::string_view::npos)
        return &kFlatOpenDocument;
    return root.starts_with("SCRIBUS") ? &kScribus : nullptr;
}

const Format* FindExtension(std::span<const FormatExtension> extensions, std::string_view extension) {
    const auto found = std::find_if(extensions.begin(), extensions.end(),
                                    [&](const FormatExtension& each) { return each.extension == extension; });
    return found == extensions.end() ? nullptr : found->format;
}

const Format* FormatOfExtension(std::string_view extension) {
    const std::string lower = AsciiLowerCase(std::string(extension));
    const Format* format = FindExtension(kXmlExtensions, lower);
    return format != nullptr ? format : FindExtension(BinaryExtensions(), lower);
}

}  // namespace

const Format* FindFormat(std::string_view content, std::string_view extension) {
    const Format* format = FormatOfBytes(content);
    if (format == nullptr)
        format = FormatOfXml(content);
    return format != nullptr ? format : FormatOfExtension(extension);
}

void PrepareReaders() {
    xmlInitParser();
}

DocumentFonts ReadDocumentFonts(std::string_view content, std::string_view extension) {
    const Format* format = FindFormat(content, extension);
    if (format == nullptr)
        return {};
    DocumentFonts result{ReadStatus::kRead, std::string(format->name), "", {}};
    try {
        FontList fonts;
        format->read(content, fonts);
        result.fonts = fonts.Take();
        result.placed = fonts.TakePlaced();
    } catch (const ReadProblem& problem) {
        result.status = ReadStatus::kUnreadable;
        result.problem = std::string("it ") + problem.what();
    } catch (const std::bad_alloc&) {
        result.status = ReadStatus::kUnreadable;
        result.problem = "it takes more memory than a document may";
    }
    return result;
}

}  // namespace documents

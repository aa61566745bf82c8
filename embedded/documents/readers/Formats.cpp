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

template <class Condition>
const Format* FindOne(Condition&& condition) {
    const std::span formats = Formats();
    const auto found = std::find_if(formats.begin(), formats.end(), condition);
    return found == formats.end() ? nullptr : &*found;
}

bool Holds(std::string_view beginning, std::string_view mark) {
    return beginning.find(mark) != std::string_view::npos;
}

const Format* FormatOfBytes(std::string_view content) {
    // Mail systems and the like put lines in front of a document (ISO 32000-1, annex H.3.4.1). Archives begin
    // with an entry that tells their type, as it is.
    const std::string_view beginning = content.substr(0, 1024);
    const Form form = beginning.starts_with("PK\3\4") ? Form::kArchive : Form::kBytes;
    return FindOne([&](const Format& each) { return each.form == form && Holds(beginning, each.mark); });
}

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
    return FindOne([&](const Format& each) {
        return each.form == Form::kXml && root.starts_with(each.root) && Holds(Beginning(content), each.mark);
    });
}

const Format* FormatOfExtension(std::string_view extension) {
    const std::string lower = AsciiLowerCase(std::string(extension));
    return FindOne([&](const Format& each) {
        return !lower.empty() &&
               std::find(each.extensions.begin(), each.extensions.end(), lower) != each.extensions.end();
    });
}

}  // namespace

std::span<const Format> Formats() {
    static const Format formats[] = {
#define READER(format) format,
#include "Readers.inc"
#undef READER
    };
    return formats;
}

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

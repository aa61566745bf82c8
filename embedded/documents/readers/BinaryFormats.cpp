#include "Formats.h"
#include "Readers.h"

namespace documents {
namespace {

constexpr Format kPdf{"pdf", ReadPdf};
constexpr Format kOpenDocument{"opendocument", ReadOpenDocument};
constexpr Format kIdml{"idml", ReadIdml};

constexpr FormatExtension kExtensions[] = {{"pdf", &kPdf},          {"odt", &kOpenDocument},
                                           {"ods", &kOpenDocument}, {"odp", &kOpenDocument},
                                           {"odg", &kOpenDocument}, {"idml", &kIdml}};

/// Such an archive begins with an entry that tells its type, as it is.
const Format* FormatOfArchive(std::string_view beginning) {
    if (beginning.find("mimetypeapplication/vnd.oasis.opendocument") != std::string_view::npos)
        return &kOpenDocument;
    if (beginning.find("mimetypeapplication/vnd.adobe.indesign-idml") != std::string_view::npos)
        return &kIdml;
    return nullptr;
}

}  // namespace

const Format* FormatOfBytes(std::string_view content) {
    // Mail systems and the like put lines in front of a document (ISO 32000-1, annex H.3.4.1).
    const std::string_view beginning = content.substr(0, 1024);
    if (beginning.starts_with("PK\3\4"))
        return FormatOfArchive(beginning);
    return beginning.find("%PDF-") != std::string_view::npos ? &kPdf : nullptr;
}

std::span<const FormatExtension> BinaryExtensions() {
    return kExtensions;
}

}  // namespace documents

#include "OpenDocumentListener.h"
#include "Readers.h"
#include "ZipArchive.h"

namespace documents {
namespace {

void ReadOpenDocument(std::string_view content, FontList& fonts) {
    constexpr char kStyles[] = "styles.xml";
    ZipArchive archive(content);
    OpenDocumentListener listener(OpenDocumentListener::Form::kPackage, fonts);
    if (archive.Has(kStyles))
        archive.ReadXml(kStyles, listener);
    archive.ReadXml("content.xml", listener);
    listener.Finish();
}

}  // namespace

const Format kOpenDocumentFormat = {
    .name = "opendocument",
    .read = ReadOpenDocument,
    .form = Form::kArchive,
    .mark = "mimetypeapplication/vnd.oasis.opendocument",
    .extensions = {"odt", "ods", "odp", "odg"},
};

}  // namespace documents

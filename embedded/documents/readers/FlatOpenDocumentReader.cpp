#include "OpenDocumentListener.h"
#include "Readers.h"

namespace documents {
namespace {

void ReadFlatOpenDocument(std::string_view content, FontList& fonts) {
    OpenDocumentListener listener(OpenDocumentListener::Form::kFlat, fonts);
    ReadXml(content, listener);
    listener.Finish();
}

}  // namespace

/// OpenDocument text, spreadsheets, presentations and drawings without an archive around them.
const Format kFlatOpenDocumentFormat = {
    .name = "opendocument",
    .read = ReadFlatOpenDocument,
    .form = Form::kXml,
    .root = "document",
    .mark = "urn:oasis:names:tc:opendocument",
    .extensions = {"fodt", "fods", "fodp", "fodg"},
};

}  // namespace documents

#include "OpenDocumentListener.h"
#include "Readers.h"

namespace documents {

void ReadFlatOpenDocument(std::string_view content, FontList& fonts) {
    OpenDocumentListener listener(OpenDocumentListener::Form::kFlat, fonts);
    ReadXml(content, listener);
    listener.Finish();
}

}  // namespace documents

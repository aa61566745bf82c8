// The fonts of a document together with those of the documents that it places.
#pragma once

#include <string>

#include "DocumentReader.h"

namespace documents {

/// What DocumentReader::Read finds, and what it finds in the documents that this one places, and that these place: a
/// font that only they use has them in `placedIn`. A placed file that is not where it is named is looked for beside the
/// document and in its folder "Links". What cannot be read, and what half a minute is too short for, is left out.
/// Throws NoDocumentReader.
DocumentFonts ReadWithPlaced(DocumentReader& reader, const std::string& path);

}  // namespace documents

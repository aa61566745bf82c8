// The formats that this build reads. Each is described beside its reader: NameReader.cpp defines kNameFormat.
#pragma once

#include "Formats.h"

namespace documents {

#define READER(format) extern const Format format;
#include "Readers.inc"
#undef READER

}  // namespace documents

#include "Formats.h"

namespace documents {

const Format* FormatOfBytes(std::string_view) {
    return nullptr;
}

std::span<const FormatExtension> BinaryExtensions() {
    return {};
}

}  // namespace documents

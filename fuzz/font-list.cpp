// Font lists as hosts pass them, in and out again.

#include <CoreFoundation++/CFRef.h>

#include <cstdint>
#include <string>

#include "FontListJSON.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    const std::string text(reinterpret_cast<const char*>(data), size);
    static_cast<void>(AppendFontsFromJSON(text, FontListForm::kArrayOrObject, fonts.get()));
    std::string written;
    static_cast<void>(FontsToJSON(fonts.get(), written));
    return 0;
}

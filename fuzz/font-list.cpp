// Font lists as hosts pass them, in and out again.
#include <CoreFoundation++/CFRef.h>

#include "FontListJSON.h"
#include "Fuzz.h"

std::vector<std::string> Seeds() {
    return {R"({"fonts":[{"PostScriptName":"Sample-Bold"},"Sample"]})"};
}

void TryInput(const std::string& input) {
    const CFRef<CFMutableArrayRef> fonts = cf::MutableArray();
    static_cast<void>(AppendFontsFromJSON(input, FontListForm::kArrayOrObject, fonts.get()));
    std::string written;
    static_cast<void>(FontsToJSON(fonts.get(), written));
}

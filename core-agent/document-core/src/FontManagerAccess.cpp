#include "FontManagerAccess.h"

namespace {
FontManagerAccess* currentFontManager = nullptr;
}

FontManagerAccess* GetFontManagerAccess() {
    return currentFontManager;
}
void SetFontManagerAccess(FontManagerAccess* fontManager) {
    currentFontManager = fontManager;
}

// What this font manager has no use for yet. docs/font-manager.md lists these functions.
#include "interface/Exports.h"

#define UNSUPPORTED(symbol, parameters)         \
    uint32_t symbol parameters {                \
        return CoreErrorCodes::kNotImplemented; \
    }

UNSUPPORTED(GetGoogleFonts, (PluginFacadeRef, CFMutableArrayRef))
UNSUPPORTED(GetRenderedPNGsDirectory, (PluginFacadeRef, CFStringRef*))
UNSUPPORTED(RenderFontNamePreviewPNGs, (PluginFacadeRef, CFArrayRef, CFArrayRef, CFMutableDictionaryRef))
UNSUPPORTED(TrackFontPanelClick, (PluginFacadeRef, uint32_t))
UNSUPPORTED(GetAdobeXMPData, (PluginFacadeRef, CFStringRef, CFStringRef*))
UNSUPPORTED(GetGlyphscanXMPData, (PluginFacadeRef, CFStringRef, CFStringRef*))

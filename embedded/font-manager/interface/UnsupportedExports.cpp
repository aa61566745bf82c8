// What this font manager has no use for yet. docs/font-manager.md lists these functions.
#include "interface/Exports.h"

#define UNSUPPORTED(symbol, parameters)         \
    uint32_t symbol parameters {                \
        return CoreErrorCodes::kNotImplemented; \
    }

UNSUPPORTED(EnableDesignActivation, (PluginFacadeRef, uint32_t, bool, bool, CFMutableArrayRef))
UNSUPPORTED(PreviewActivateFonts, (PluginFacadeRef, CFArrayRef, bool))
UNSUPPORTED(GetGoogleFonts, (PluginFacadeRef, CFMutableArrayRef))
UNSUPPORTED(GetRenderedPNGsDirectory, (PluginFacadeRef, CFStringRef*))
UNSUPPORTED(RenderFontNamePreviewPNGs, (PluginFacadeRef, CFArrayRef, CFArrayRef, CFMutableDictionaryRef))
UNSUPPORTED(RenameSmartList, (PluginFacadeRef, int32_t, CFStringRef))
UNSUPPORTED(DeleteSmartList, (PluginFacadeRef, int32_t))
UNSUPPORTED(QueryForSmartListFonts, (PluginFacadeRef, CFStringRef, CFMutableArrayRef))
UNSUPPORTED(GetSmartList, (PluginFacadeRef, int32_t, CFDictionaryRef*))
UNSUPPORTED(GetPanelSmartListTree, (PluginFacadeRef, CFArrayRef*))
UNSUPPORTED(GetAllSmartLists, (PluginFacadeRef, CFMutableArrayRef))
UNSUPPORTED(CreateSmartList, (PluginFacadeRef, CFStringRef, CFStringRef, int32_t*))
UNSUPPORTED(SetSmartListQuery, (PluginFacadeRef, int32_t, CFStringRef))
UNSUPPORTED(GetSmartListFonts, (PluginFacadeRef, int32_t, CFMutableArrayRef))
UNSUPPORTED(GetFontConflicts, (PluginFacadeRef, CFArrayRef, CFMutableArrayRef))
UNSUPPORTED(TrackFontPanelClick, (PluginFacadeRef, uint32_t))
UNSUPPORTED(GetAdobeXMPData, (PluginFacadeRef, CFStringRef, CFStringRef*))
UNSUPPORTED(GetGlyphscanXMPData, (PluginFacadeRef, uint32_t, CFStringRef*))

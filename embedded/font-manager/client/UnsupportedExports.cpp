// What this font manager has no use for. docs/font-manager.md lists these functions, with the reasons.
#include "client/Exports.h"

uint32_t TrackFontPanelClick(PluginFacadeRef, uint32_t) {
    return CoreErrorCodes::kNotImplemented;
}

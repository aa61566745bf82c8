// The numbers under which the columns of font records are known.
#include "client/Exports.h"

using namespace pellwick;

// Panels keep these numbers in their settings: none is ever given another meaning.
#define COLUMNS(X)                                \
    X(GetPostscriptNameColumnID, 1)               \
    X(GetDisplayNameColumnID, 2)                  \
    X(GetFamilyNameColumnID, 3)                   \
    X(GetFamilyGroupIDColumnID, 4)                \
    X(GetFamilyGroupNameColumnID, 5)              \
    X(GetFoundryNameColumnID, 6)                  \
    X(GetScannedFoundryColumnID, 7)               \
    X(GetFontTypeColumnID, 8)                     \
    X(GetFontVersionColumnID, 9)                  \
    X(GetFontFaceIDColumnID, 10)                  \
    X(GetFileSizeColumnID, 11)                    \
    X(GetLocalPathColumnID, 12)                   \
    X(GetFontLocationColumnID, 13)                \
    X(GetIsFontLocalColumnID, 14)                 \
    X(GetActivationStateColumnID, 15)             \
    X(GetCanActivateAcrossWorkgroupsColumnID, 16) \
    X(GetExportFontsColumnID, 17)                 \
    X(GetIsMarquellFileColumnID, 18)              \
    X(GetGlyphscanChecksumColumnID, 19)           \
    X(GetLegacyGlyphscanChecksumColumnID, 20)     \
    X(GetWorkgroupIDColumnID, 21)                 \
    X(GetWorkgroupNameColumnID, 22)               \
    X(GetWorkgroupTypeColumnID, 23)

#define DEFINE_COLUMN(symbol, columnID)                             \
    uint32_t symbol(PluginFacadeRef facade, int32_t* outColumnID) { \
        return Answer(facade, outColumnID, columnID);               \
    }
COLUMNS(DEFINE_COLUMN)
#undef DEFINE_COLUMN

// The numbers under which the columns of font records are known.
#include "client/Exports.h"
#include "client/Library.h"

using namespace pellwick;

namespace {

uint32_t AnswerColumn(PluginFacadeRef facade, int32_t columnID, int32_t* outColumnID) {
    return Guarded([&] {
        if (outColumnID == nullptr)
            return CoreErrorCodes::kNullPointer;
        const ErrorCode code = Library::Get().CheckFacade(facade);
        if (code == CoreErrorCodes::kSuccess)
            *outColumnID = columnID;
        return code;
    });
}

}  // namespace

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
        return AnswerColumn(facade, columnID, outColumnID);         \
    }
COLUMNS(DEFINE_COLUMN)
#undef DEFINE_COLUMN

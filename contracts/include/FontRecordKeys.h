/*
 * The font record: one CoreFoundation dictionary per font, exchanged with the font manager and, as JSON
 * objects with the same members, with the host.
 */
#ifndef FONT_RECORD_KEYS_H
#define FONT_RECORD_KEYS_H

/* clang-format off */
/* X(constant, key string). Strings unless noted. Records carry them all; nothing here reads AssignedFamilyID,
   PrinterFont, AssignedFamilyName and Keywords. */
#define FONT_RECORD_KEYS(X)                                                                                 \
    X(kGS_PostScriptNameKey, "PostScriptName")                                                              \
    X(kGS_FoundryKey, "Foundry")                                                                            \
    X(kGS_FontKindKey, "FontKind") /* a name of GFontManagerConstants, or "Postscript" */                   \
    X(kGS_KerningChecksumKey, "KerningChecksum") /* of widths and kerning */                                                            \
    X(kGS_VersionKey, "Version")                                                                            \
    X(kGS_GlyphscanChecksumKey, "Glyphscan_1.2_Checksum") /* of the outlines */                                                   \
    X(kGS_ChecksumKey, "Checksum") /* SHA-256 of the font file, lower-case hexadecimal */                   \
    X(kGS_OutlineFileNameKey, "OutlineFileName")                                                            \
    X(kGS_OutlineFileSizeKey, "OutlineFileSize")   /* number, bytes */                                      \
    X(kGS_AssignedFamilyIDKey, "AssignedFamilyID") /* number */                                             \
    X(kGS_FamilyKey, "Family")                                                                              \
    X(kGS_StyleKey, "Style") /* as the font has it: "Bold Italic" */                                        \
    X(kGS_PrinterFontKey, "PrinterFont")                                                                    \
    X(kGS_AssignedFamilyNameKey, "AssignedFamilyName")                                                      \
    X(kGS_PathKey, "Path")         /* where the active font file stands, else where it is kept; UTF-8 */    \
    X(kGS_KeywordsKey, "Keywords") /* array of strings */                                                   \
    X(kGS_SubDocumentsWithFontKey, "SubDocumentsWithFont") /* array: paths of placed documents */           \
    X(kGS_WhereKey, "where")       /* in which part of the document, for people: "pages 1-3" */             \
    X(kGS_EmbeddedKey, "embedded") /* boolean: the document brings the font along */                        \
    X(kGS_SourceDocumentNameKey, "SourceDocumentName")                                                      \
    X(kGS_DatabaseIDKey, "DatabaseID")                     /* number, 32-bit unsigned; 0 is not a font */      \
    X(kGS_PossibleReplacementsKey, "PossibleReplacements") /* dictionary, PostScript name -> font record */ \
    X(kGS_ActivationStateKey, "ActivationStatus")          /* number, see FontActivationState */            \
    X(kGS_MatchedFontKey, "MatchedFont")                   /* dictionary, a font record */                  \
    X(kGS_WorkgroupNameKey, "WorkgroupName")                                                                \
    X(kGS_WorkgroupIDKey, "WorkgroupID")     /* number */                                                   \
    X(kGS_LocationKey, "Location")           /* number: 1 = file on this machine, 0 = only on the server */ \
    X(kGS_WorkgroupTypeKey, "WorkgroupType") /* number, see WorkgroupType */                                \
    X(kGS_ReasonKey, "Reason") /* for people: how a font came to match, or in what a replacement is like */ \
    X(kGS_ConflictKey, "Conflict") /* for people: which others of its name are active too, by their versions */ \
    X(kGS_RankKey, "Rank")     /* number, of a replacement: 1 is the best */                                \
    /* Of a replacement: for which font of which document. Handed back when it is activated, so that the    */ \
    /* choice is known the next time. */                                                                    \
    X(kGS_ReplacementForKey, "ReplacementFor")           /* PostScript name */                              \
    X(kGS_ReplacementInKey, "ReplacementInDocument")     /* path */                                         \
    /* Of a request, how its font is to be looked for; booleans. */                                         \
    X(kGS_ExactMatchKey, "ExactMatch")     /* by the PostScript name as it is written alone */              \
    X(kGS_EntireFamilyKey, "EntireFamily") /* with the rest of its family */
/* clang-format on */

/* A workgroup record holds kGS_WorkgroupIDKey, kGS_WorkgroupNameKey and kGS_WorkgroupTypeKey. */

/* Values of kGS_WorkgroupTypeKey that are told apart; others are shown by the name that the font manager
 * gives. */
enum WorkgroupType {
    kWorkgroupType_PersonalLibrary = 0,
    kWorkgroupType_FontLibrary = 1,
    kWorkgroupType_All = 2, /* stands for all workgroups together */
    kWorkgroupType_CloudLibrary = 3,
    kWorkgroupType_System = 4, /* the system's own fonts */
    kWorkgroupType_GoogleLibrary = 8,
    kWorkgroupType_TypekitLibrary = 12
};

/* Names that stand for a word of the user's language. */
#define WORKGROUP_NAME_FONT_LIBRARY "Font Library (LOCALIZE ME)"
#define WORKGROUP_NAME_GOOGLE_LIBRARY "Google Library (LOCALIZE ME)"

/* Workgroup IDs that are no workgroup of the font manager's. */
enum {
    kWorkgroupID_Unknown = -1, /* cannot be told */
    kWorkgroupID_All = -2      /* that of kWorkgroupType_All */
};

#define FONT_RECORD_KEY_CONSTANT(constant, text) static const char constant[] = text;
#ifdef __cplusplus
#undef FONT_RECORD_KEY_CONSTANT
#define FONT_RECORD_KEY_CONSTANT(constant, text) inline constexpr char constant[] = text;
#endif
FONT_RECORD_KEYS(FONT_RECORD_KEY_CONSTANT)
#undef FONT_RECORD_KEY_CONSTANT

/*
 * Values of kGS_ActivationStateKey. The font manager that stands in this repository uses those named here;
 * others may come from other font managers.
 */
enum FontActivationState {
    kFontActivationState_Unknown = -1,
    kFontActivationState_Inactive = 0,
    kFontActivationState_ActivatedByUser = 1,   /* until the user deactivates it */
    kFontActivationState_ActivatedByPlugin = 2, /* for as long as a plug-in's documents need it */
    kFontActivationState_SystemFont = 3,        /* always active */
    kFontActivationState_Missing = 7,           /* its file is gone */
    kFontActivationState_Damaged = 8
};

/* Whether a font in that state counts as active. */
static inline int FontActivationStateCountsAsActive(long long state) {
    return (state >= 1 && state <= 6) || (state >= 9 && state <= 11);
}

#endif

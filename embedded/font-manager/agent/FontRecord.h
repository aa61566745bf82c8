// Font records and workgroup records as they travel, with the members of FontRecordKeys.h.
#pragma once

#include <vector>

#include "activation/FontMatcher.h"
#include "agent/FontManager.h"
#include "ipc/Message.h"

namespace pellwick {

Json FontRecord(const FontManager& manager, const Font& font);
/// The same with checksums, to compare fonts by.
Json FontRecordWithFingerprint(const FontManager& manager, const Font& font);
Json FontRecords(const FontManager& manager, const std::vector<Font>& fonts);
Json WorkgroupRecord(const Workgroup& workgroup);

/// Whether the user or a plug-in holds the font active, or the system offers it.
bool IsActive(const Font& font);

/// What a request's font record, or a bare name in its place, asks for.
RequestedFont RequestedFontOf(const Json& record);

/// A number as a font's ID; 0, which no font has, when it is out of range.
uint32_t FontIDOf(long long number);

/// The numbers of an array of database IDs or of font records.
std::vector<uint32_t> FontIDsOf(const Json& fonts);

}  // namespace pellwick

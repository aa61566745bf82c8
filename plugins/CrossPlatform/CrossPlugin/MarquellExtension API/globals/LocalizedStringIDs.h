// The framework's localized strings that stand alone: menu items and names of workgroups. Those of message
// boxes are in MessageBoxIDs.h.
#pragma once

#include <cstdint>

namespace localized {

inline constexpr uint32_t kProductName = 199;
inline constexpr uint32_t kPreferences = 200;
inline constexpr uint32_t kAbout = 201;
inline constexpr uint32_t kCollectFonts = 204;
inline constexpr uint32_t kCreateDocumentSet = 205;
inline constexpr uint32_t kCheckFonts = 206;
inline constexpr uint32_t kSelectWorkgroup = 208;
inline constexpr uint32_t kSelectLibrary = 216;

inline constexpr uint32_t kCloudLibrary = 211;
inline constexpr uint32_t kAllWorkgroups = 212;
inline constexpr uint32_t kSystemFonts = 213;
inline constexpr uint32_t kPersonalLibrary = 214;
inline constexpr uint32_t kFontLibrary = 215;
inline constexpr uint32_t kGoogleLibrary = 219;
inline constexpr uint32_t kTypekitLibrary = 222;

}  // namespace localized

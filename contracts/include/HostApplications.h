// The host applications for which a plug-in ships without a file of its own: it names itself by an identifier.
#pragma once

#include <string_view>

inline constexpr std::string_view kPluginIdentifierPrefix = "com.vantorix.AutoActivationPlugin.";

struct NamedHostApplication {
    std::string_view identifierEnd;  ///< what follows the prefix
    std::string_view hostApp;
};

inline constexpr NamedHostApplication kHostApplications[] = {
    {"AI27", "Illustrator2023"},   {"AI28", "Illustrator2024"},   {"AI29", "Illustrator2025"},
    {"AI30", "Illustrator2026"},   {"AE230", "AfterEffects2023"}, {"AE240", "AfterEffects2024"},
    {"AE250", "AfterEffects2025"}, {"AE260", "AfterEffects2026"}};

// Small valid fonts, made on the spot.
#pragma once

#include <string>
#include <vector>

struct TestFontNames {
    std::string postScriptName;
    std::string family;
    std::string style = "Regular";
    std::string version = "1.0";  ///< becomes "Version 1.0"
    unsigned embedding = 0;       ///< fsType of the OS/2 table
    std::string licence{};        ///< empty: it says nothing
    std::string licenceURL{};
};

/// A TrueType font (ISO/IEC 14496-22) of two glyphs, with names in UTF-16. The same names make the same
/// bytes.
std::string MakeTestFont(const TestFontNames& names);

std::string MakeTestFontCollection(const std::vector<TestFontNames>& fonts);

// Small fonts that cost whoever reads them as much as they can: each did so once.
#pragma once

#include <string>
#include <vector>

namespace hostile {

struct Font {
    const char* name;
    std::string content;
};

/// 4,096 names of 60,000 bytes that come to nothing, in each of 64 faces. 100 KB.
std::string ManyLongNames();
/// 512 named instances in each of 256 faces. 11 KB.
std::string ManyInstances();
/// A glyph made of ten, each again of ten, eight deep: glyph 0, or that of the letter A, of no width. 5 KB.
std::string DeepGlyph(bool isLetter);

/// All of the above. What follows is harmless.
std::vector<Font> All();

/// A collection of variable fonts, each with so many named instances.
std::string Instances(unsigned faces, unsigned instances);
/// Named "Caf\u00e9" in an encoding of its time.
std::string MacintoshNames();

}  // namespace hostile

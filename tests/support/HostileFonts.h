// Small fonts that cost whoever reads them as much as they can: each did so once.
#pragma once

#include <string>
#include <vector>

namespace hostile {

struct Font {
    const char* name;
    std::string content;
};

std::vector<Font> All();

// These are harmless.
/// A collection of variable fonts, each with so many named instances.
std::string Instances(unsigned faces, unsigned instances);
/// Named "Caf\u00e9" in an encoding of its time.
std::string MacintoshNames();

}  // namespace hostile

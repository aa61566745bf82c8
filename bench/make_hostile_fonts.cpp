// make-hostile-fonts FOLDER COUNT [SEED]: files that pretend to be fonts and harm whoever believes them:
// those that cost a reader as much as they can, and fonts and collections of which tables are cut, and
// offsets, counts and other bytes are changed. No two are the same.

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "FontTables.h"
#include "HostileFonts.h"
#include "TestFonts.h"

namespace {

class Mutator {
public:
    explicit Mutator(unsigned seed) : mRandom(seed) {}

    size_t Random(size_t count) { return mRandom() % count; }

    std::string Mutate(std::string file) {
        for (size_t left = 1 + Random(4); left > 0; --left)
            MutateOnce(file);
        return file;
    }

    /// A font of which one table is cut short, and that says so or does not.
    std::string CutTable(const TestFontNames& names) {
        FontTables tables = TablesOfTestFont(names);
        const auto table = std::next(tables.begin(), static_cast<std::ptrdiff_t>(Random(tables.size())));
        if (Random(4) == 0)
            tables.erase(table);
        else
            table->second.resize(Random(table->second.size()));
        const std::string file = FontOfTables(tables);
        return Random(2) == 0 ? file : Mutate(file);
    }

private:
    /// Directories and headers stand at the beginning, and matter most.
    size_t Position(const std::string& file) {
        const size_t end = Random(2) == 0 ? std::min<size_t>(file.size(), 400) : file.size();
        return end <= 8 ? 0 : Random(end - 8) & ~size_t{1};
    }

    void MutateOnce(std::string& file) {
        constexpr std::array<uint32_t, 6> kNumbers = {0, 1, 0x7FFF, 0xFFFF, 0x7FFFFFFF, 0xFFFFFFFF};
        const uint32_t number = kNumbers[Random(kNumbers.size())];
        const size_t position = Position(file);
        switch (Random(6)) {
            case 0:
                file.resize(file.size() - Random(file.size() / 2));
                break;
            case 1:
                file.replace(position, 2, Bytes().U16(number).Get());
                break;
            case 2:
                file.replace(position, 4, Bytes().U32(number).Get());
                break;
            case 3:
                file.replace(position, 4, Bytes().U32(static_cast<uint32_t>(Random(file.size()))).Get());
                break;
            case 4:
                file.replace(position, 8, file, Position(file), 8);
                break;
            default:
                file[position] = static_cast<char>(mRandom());
                break;
        }
    }

    std::mt19937 mRandom;
};

std::string MakeFile(Mutator& mutator, const std::vector<hostile::Font>& hostile, int index) {
    const std::string name = "Hostile" + std::to_string(index);
    const TestFontNames names{name + "-Regular", name, "Regular"};
    const std::string& harmful = hostile[mutator.Random(hostile.size())].content;
    switch (index % 8) {
        case 0:
            return harmful + name;  // what follows a font's tables is nobody's
        case 1:
        case 2:
            return mutator.Mutate(harmful);
        case 3:
        case 4:
            return mutator.Mutate(MakeTestFontCollection({names, {name + "-Bold", name, "Bold"}}));
        case 5:
            return mutator.CutTable(names);
        default:
            return mutator.Mutate(MakeTestFont(names));
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3 || argc > 4) {
        std::fprintf(stderr, "usage: make-hostile-fonts FOLDER COUNT [SEED]\n");
        return 2;
    }
    Mutator mutator(argc == 4 ? static_cast<unsigned>(std::atoi(argv[3])) : 1);
    const std::vector<hostile::Font> hostile = hostile::All();
    std::set<std::string> made;
    for (int index = 0; index < std::atoi(argv[2]); ++index) {
        std::string file;
        do
            file = MakeFile(mutator, hostile, index);
        while (!made.insert(file).second);
        char name[32];
        std::snprintf(name, sizeof name, "/hostile%05d.ttf", index);
        if (!std::ofstream(argv[1] + std::string(name), std::ios::binary)
                 .write(file.data(), static_cast<std::streamsize>(file.size())))
            return 1;
    }
    return 0;
}

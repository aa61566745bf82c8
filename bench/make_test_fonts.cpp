// make-test-fonts FOLDER COUNT: small fonts "Bench0000-Regular" and so on, and a document "document.pdf" that
// uses all.

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

#include "TestFonts.h"

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: make-test-fonts FOLDER COUNT\n");
        return 2;
    }
    const std::string folder = argv[1];
    std::ofstream document(folder + "/document.pdf", std::ios::binary);
    document << "%PDF-1.4\n";
    for (int index = 0; index < std::atoi(argv[2]); ++index) {
        char family[32];
        std::snprintf(family, sizeof family, "Bench%04d", index);
        const std::string name = std::string(family) + "-Regular";
        std::ofstream font(folder + "/" + name + ".ttf", std::ios::binary);
        if (!(font << MakeTestFont({name, family})).flush())
            return 1;
        document << "<< /Type /FontDescriptor /FontName /ABCDEF+" << name << " /Flags 4 >>\n";
    }
    return document.good() ? 0 : 1;
}

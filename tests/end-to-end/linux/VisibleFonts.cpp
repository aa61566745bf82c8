#include <sstream>

#include "HostWorld.h"

std::set<std::string> HostWorld::VisibleFonts() const {
    const ProgramResult result = TestProcess({"/usr/bin/fc-list", ":", "postscriptname", "file"}).Finish();
    std::set<std::string> names;
    std::istringstream lines(result.output);
    const std::string mark = "postscriptname=";
    for (std::string line; std::getline(lines, line);) {
        if (line.find("/fonts/Vantorix/") != std::string::npos)
            names.insert(line.substr(line.find(mark) + mark.size()));
    }
    return names;
}

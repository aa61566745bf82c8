#include "ScriptPage.h"

#include <fstream>

std::vector<PageExchange> ReadScriptPage(const std::string& name) {
    std::ifstream page(std::string(DOCS) + "/" + name);
    std::vector<PageExchange> script;
    bool isInBlock = false;
    for (std::string line; std::getline(page, line);) {
        if (line == "```") {
            isInBlock = !isInBlock;
        } else if (isInBlock && (line.starts_with("> ") || line.starts_with("$ "))) {
            script.push_back({line[0], line.substr(2), {}});
        } else if (isInBlock) {
            if (script.empty())
                script.push_back({'\0', "", {}});
            script.back().answers.push_back(line);
        }
    }
    return script;
}

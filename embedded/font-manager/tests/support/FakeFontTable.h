// A session's table of fonts that a test can look into.
#pragma once

#include <map>
#include <string>

#include "platform/FontTable.h"

namespace pellwick::test {

class FakeFontTable : public platform::FontTable {
public:
    bool IsFilledFromFolders() override { return false; }
    bool Add(const std::string& path) override {
        if (isFull)
            return false;
        ++counts[path];
        return true;
    }
    bool Remove(const std::string& path) override {
        const auto found = counts.find(path);
        if (found == counts.end())
            return false;
        if (--found->second == 0)
            counts.erase(found);
        return true;
    }
    void AnnounceChange() override { ++announcements; }
    platform::VisibleFonts Visible() override { return {}; }

    std::map<std::string, int> counts;  ///< how often each file is in it
    int announcements = 0;
    bool isFull = false;
};

}  // namespace pellwick::test

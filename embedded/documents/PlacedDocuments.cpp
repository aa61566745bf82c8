// What a document's own fonts and those of the documents that it places come to.
#include <algorithm>
#include <map>
#include <set>
#include <tuple>

#include "DocumentLimits.h"
#include "DocumentReader.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace documents {
namespace {

using Names = std::tuple<std::string, std::string, std::string>;  ///< PostScript name, family, style

Names NamesOf(const DocumentFont& font) {
    return {font.postScriptName, font.family, font.style};
}

/// Where the file is that the document in the folder, which ends with a separator, places; empty when nowhere.
std::string FindPlaced(const std::string& folder, const std::string& placed) {
    const std::string_view name = std::string_view(placed).substr(placed.find_last_of("/\\") + 1);
    const std::filesystem::path base = platform::Utf8Path(folder);
    for (const auto& path : {base / platform::Utf8Path(placed), base / platform::Utf8Path(name),
                             base / "Links" / platform::Utf8Path(name)}) {
        const std::string text = platform::Utf8Text(path.lexically_normal());
        if (platform::IsExistingFile(text))
            return text;
    }
    return {};
}

/// One document and all below it.
class PlacedReader {
public:
    explicit PlacedReader(DocumentReader& reader) : mReader(reader) {}

    DocumentFonts Read(const std::string& path) {
        DocumentFonts document = mReader.Read(path);
        mSeen.insert(platform::AbsolutePath(path));
        ReadPlaced(document, platform::AbsolutePath(path), 1);
        for (const DocumentFont& font : document.fonts)
            mFonts.erase(NamesOf(font));
        for (auto& [names, font] : mFonts)
            document.fonts.push_back(std::move(font));
        std::sort(document.fonts.begin(), document.fonts.end(),
                  [](const DocumentFont& left, const DocumentFont& right) {
                      return NamesOf(left) < NamesOf(right);
                  });
        return document;
    }

private:
    void ReadPlaced(const DocumentFonts& document, const std::string& path, int depth) {
        for (const std::string& placed : document.placed) {
            const std::string file = FindPlaced(platform::FolderPart(path), placed);
            if (file.empty() || mSeen.size() > kMaxPlaced || !mSeen.insert(file).second)
                continue;
            const DocumentFonts found = mReader.Read(file);
            for (const DocumentFont& font : found.fonts)
                Add(font, file);
            if (depth < kMaxPlacedDepth)
                ReadPlaced(found, file, depth + 1);
        }
    }
    void Add(const DocumentFont& font, const std::string& file) {
        const auto [entry, isFirst] = mFonts.try_emplace(NamesOf(font), font);
        DocumentFont& known = entry->second;
        known.isEmbedded = known.isEmbedded && font.isEmbedded;
        if (known.placedIn.size() >= kMaxPlaces)
            return;
        known.placedIn.push_back(file);
        known.where = (isFirst ? "placed " : known.where + ", ") + platform::NamePart(file);
    }

    DocumentReader& mReader;
    std::set<std::string> mSeen;
    std::map<Names, DocumentFont> mFonts;  ///< of placed documents
};

}  // namespace

DocumentFonts DocumentReader::ReadWithPlaced(const std::string& path) {
    return PlacedReader(*this).Read(path);
}

}  // namespace documents

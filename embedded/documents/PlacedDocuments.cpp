#include "PlacedDocuments.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <tuple>
#include <utility>

#include "DocumentLimits.h"
#include "platform/Files.h"

namespace documents {
namespace {

/// For all placed documents together; a document of ordinary size takes some hundredths of a second.
constexpr std::chrono::seconds kPatience{30};

bool IsSeparator(char letter) {
    return letter == '/' || letter == '\\';
}

/// Where the file is that the document in the folder, which ends with a separator, places; empty when nowhere. Not on
/// other machines: asking a server that a stranger's document names would tell it who asks.
std::string FindPlaced(const std::string& folder, const std::string& placed) {
    const std::string name = placed.substr(placed.find_last_of("/\\") + 1);
    const bool isElsewhere = placed.size() > 1 && IsSeparator(placed[0]) && IsSeparator(placed[1]);
    const std::string named = isElsewhere ? "" : platform::IsFullPath(placed) ? placed : folder + placed;
    for (const std::string& path : {named, folder + name, folder + "Links/" + name}) {
        std::string file = path.empty() ? path : platform::AbsolutePath(path);
        if (!file.empty() && platform::IsExistingFile(file))
            return file;
    }
    return {};
}

/// One document and all below it.
class PlacedReader {
public:
    explicit PlacedReader(DocumentReader& reader) : mReader(reader) {}

    DocumentFonts Read(const std::string& path) {
        DocumentFonts document = mReader.Read(path);
        const std::string file = platform::AbsolutePath(path);
        IsNew(file);
        ReadPlaced(document, file, 1);
        for (const DocumentFont& font : document.fonts)
            mFonts.erase(font.postScriptName);
        for (auto& [name, font] : mFonts)
            document.fonts.push_back(std::move(font));
        std::sort(document.fonts.begin(), document.fonts.end(),
                  [](const DocumentFont& left, const DocumentFont& right) {
                      return std::tie(left.postScriptName, left.family, left.style) <
                             std::tie(right.postScriptName, right.family, right.style);
                  });
        return document;
    }

private:
    bool MayGoOn() const {
        return mSeen.size() <= kMaxPlaced && mFonts.size() < kMaxFonts &&
               std::chrono::steady_clock::now() - mBegin < kPatience;
    }
    /// Whatever its path.
    bool IsNew(const std::string& file) {
        platform::FileIdentity identity;
        return !platform::IdentifyFile(file, identity) &&
               mSeen.emplace(identity.volume, identity.file).second;
    }
    void ReadPlaced(const DocumentFonts& document, const std::string& path, int depth) {
        for (const std::string& placed : document.placed) {
            if (!MayGoOn())
                return;
            const std::string file = FindPlaced(platform::FolderPart(path), placed);
            if (file.empty() || !IsNew(file))
                continue;
            const DocumentFonts found = mReader.Read(file);
            for (const DocumentFont& font : found.fonts)
                Add(font, file);
            if (depth < kMaxPlacedDepth)
                ReadPlaced(found, file, depth + 1);
        }
    }
    void Add(const DocumentFont& font, const std::string& file) {
        const auto [entry, isFirst] = mFonts.try_emplace(font.postScriptName, font);
        DocumentFont& known = entry->second;
        known.isEmbedded = known.isEmbedded && font.isEmbedded;
        if (known.placedIn.size() >= kMaxPlaces)
            return;
        known.placedIn.push_back(file);
        known.where = (isFirst ? "placed " : known.where + ", ") + platform::NamePart(file);
    }

    DocumentReader& mReader;
    const std::chrono::steady_clock::time_point mBegin = std::chrono::steady_clock::now();
    std::set<std::pair<uint64_t, uint64_t>> mSeen;  ///< files by volume and number
    std::map<std::string, DocumentFont> mFonts;     ///< of placed documents, by their PostScript names
};

}  // namespace

DocumentFonts ReadWithPlaced(DocumentReader& reader, const std::string& path) {
    return PlacedReader(reader).Read(path);
}

}  // namespace documents

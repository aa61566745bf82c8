// Collects fonts in a folder for whoever is to print with them.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "ErrorCodes.h"
#include "collect/FileCopies.h"
#include "collect/Manifest.h"

namespace pellwick {

/// Calls a method of the agent.
using AgentCall = std::function<ErrorCode(const char* method, const Json& arguments, Json& result)>;

/// The records of the fonts that the agent knows, with what it answers to GetLicences, in the order of `ids`.
[[nodiscard]] ErrorCode GetFontsToCollect(const AgentCall& call, const Json& ids, Json& fonts);

/// A list of the use that the document's record of a font, or its bare name, tells of. `document`: a path.
Json UsesIn(const std::string& document, const Json& record);
/// What the manifest says of that font when nobody has it.
Json MissingFont(const std::string& document, const Json& record);

/// What is done with a font that must not be embedded without its owner's leave.
enum class RestrictedFonts { kCopy, kLeaveOut };

struct CollectedFont {
    enum class Outcome {
        kCopied,
        kLeftOut,     ///< as RestrictedFonts says
        kUnreadable,  ///< its file is gone, or cannot be read
        kNotWritten
    };
    Outcome outcome = Outcome::kCopied;
    Json entry;  ///< of the manifest; "problem" there is for people
    bool isRestricted = false;
    platform::SystemError error{};  ///< why it was not written
};

/// One thread.
class FontCollector {
public:
    explicit FontCollector(std::string folder, RestrictedFonts restricted = RestrictedFonts::kCopy)
        : mFolder(std::move(folder)), mRestricted(restricted), mManifest(mFolder) {}

    /// Copies the font's file, unless that was done for another of its faces, and the licences that stand
    /// beside it where that place is known. `font`: of GetFontsToCollect. `uses`: a list of FontUse. The
    /// folder exists.
    CollectedFont Collect(const Json& font, const Json& uses);
    /// Those that nobody has, as Manifest::SetMissing takes them.
    void SetMissing(const std::string& document, const Json& fonts) { mManifest.SetMissing(document, fonts); }
    /// Writes the manifest.
    [[nodiscard]] platform::SystemError Finish() { return mManifest.Save(); }

    std::string PathOf(const std::string& file) const { return PathInFolder(mFolder, file); }
    const std::string& ManifestPath() const { return mManifest.Path(); }

private:
    CollectedFont Copy(const Json& font);
    Json CopyLicences(const std::string& fontPath);

    const std::string mFolder;
    const RestrictedFonts mRestricted;
    Manifest mManifest;
    std::map<std::string, std::string> mCopies;  ///< names in the folder, by the files' paths
};

}  // namespace pellwick

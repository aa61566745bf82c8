// A client of the agent that does one thing after the other at random, and remembers what it was answered.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "ipc/AgentConnection.h"
#include "tests/support/TestWorld.h"

/// What is the case for a font that is in the font manager.
struct FontFacts {
    bool isUsers = false;   ///< active for the user
    bool isLeased = false;  ///< active for a document of this process

    bool operator==(const FontFacts&) const = default;
};

/// Fonts by the checksums of their files, and the fonts in sets.
struct LibraryFacts {
    std::map<std::string, FontFacts> fonts;
    std::map<std::string, std::set<std::string>> sets;

    bool operator==(const LibraryFacts&) const = default;
};

/// What the agent calls them.
struct LibraryIDs {
    std::map<std::string, uint32_t> fonts;  ///< the first face of each file
    std::map<std::string, int64_t> sets;
};

/// Font files of the same content under different names, of which one is added.
struct FontSource {
    std::string postScriptName;
    std::string checksum;
    std::vector<std::string> paths;
};

FontSource MakeFontSource(const pellwick::test::TestWorld& world, const std::string& name, bool isCollection);

/// It has fonts and sets of its own, of which nothing else makes use, and shares some fonts with others, of
/// which it knows nothing. One thread.
class RandomClient {
public:
    RandomClient(std::string name, std::vector<FontSource> own, std::vector<FontSource> shared,
                 unsigned seed);

    /// Goes on until the agent is gone.
    void Work();

    bool Owns(const std::string& checksum) const { return mOwnChecksums.count(checksum) != 0; }
    bool OwnsSet(const std::string& set) const { return set.starts_with(mName); }
    /// What was answered as done.
    const LibraryFacts& Known() const { return mKnown; }
    /// What is the case if the last request, which got no answer, was carried out.
    const LibraryFacts& Perhaps() const { return mPerhaps ? *mPerhaps : mKnown; }
    bool IsUncertain() const { return mPerhaps.has_value(); }
    /// To go on from what is the case now.
    void Restart(LibraryFacts facts, LibraryIDs ids);
    int Done() const { return mDone; }
    /// What was answered otherwise than it should since the last restart.
    const std::vector<std::string>& Findings() const { return mFindings; }

private:
    using Change = std::function<void(LibraryFacts&)>;
    using Json = pellwick::Json;

    size_t Random(size_t count) { return mRandom() % count; }
    /// Carries out a request that is to change what is the case; false when the agent is gone. `result` is
    /// null where it was refused.
    bool Ask(const char* method, const Json& arguments, const Change& change, Json& result);
    bool DoOne();
    bool DisturbShared();
    bool AddFont();
    bool RemoveFont();
    bool Activate();
    bool Lease();
    bool LeaseByName(const std::string& checksum);
    bool MakeSet();
    bool FillSet();
    bool DeleteSet();
    /// Some of its fonts that are there; none when there are none.
    std::vector<std::string> SomeFonts(size_t most);
    std::string AnySet();
    Json IDsOf(const std::vector<std::string>& checksums) const;

    const std::string mName;
    const std::vector<FontSource> mOwn;
    const std::vector<FontSource> mShared;
    std::set<std::string> mOwnChecksums;
    std::mt19937 mRandom;
    std::optional<pellwick::AgentConnection> mConnection;
    LibraryFacts mKnown;
    std::optional<LibraryFacts> mPerhaps;
    LibraryIDs mIDs;
    int mSetNumber = 0;
    int mDone = 0;
    std::vector<std::string> mFindings;
};

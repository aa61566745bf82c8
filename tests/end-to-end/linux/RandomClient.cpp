#include "RandomClient.h"

#include <algorithm>
#include <array>
#include <nlohmann/json.hpp>

#include "TestFonts.h"
#include "common/Protocol.h"
#include "tests/support/VaultFiles.h"

using pellwick::Json;
namespace method = pellwick::method;

namespace {

constexpr std::chrono::seconds kPatience{30};

}  // namespace

FontSource MakeFontSource(const pellwick::test::TestWorld& world, const std::string& name,
                          bool isCollection) {
    const TestFontNames names{name + "-Bold", name, "Bold"};
    const std::string content = isCollection
                                    ? MakeTestFontCollection({names, {name + "-Italic", name, "Italic"}})
                                    : MakeTestFont(names);
    FontSource source{names.postScriptName, pellwick::test::ChecksumOf(content), {}};
    for (const char* extension : {".ttf", ".OTF", ""})
        source.paths.push_back(world.Write("fonts/" + name + extension, content));
    return source;
}

RandomClient::RandomClient(std::string name, std::vector<FontSource> own, std::vector<FontSource> shared,
                           unsigned seed)
    : mName(std::move(name)), mOwn(std::move(own)), mShared(std::move(shared)), mRandom(seed) {
    for (const FontSource& source : mOwn)
        mOwnChecksums.insert(source.checksum);
}

void RandomClient::Restart(LibraryFacts facts, LibraryIDs ids) {
    mKnown = std::move(facts);
    mPerhaps.reset();
    mFindings.clear();
    mIDs = std::move(ids);
}

void RandomClient::Work() {
    mConnection.emplace(kPatience);
    while (DoOne()) {
    }
}

bool RandomClient::Ask(const char* method, const Json& arguments, const Change& change, Json& result) {
    LibraryFacts after = mKnown;
    change(after);
    const ErrorCode code = mConnection->Call(method, arguments, result);
    if (mConnection->HasFailed()) {
        mPerhaps = std::move(after);
        return false;
    }
    if (code == CoreErrorCodes::kSuccess) {
        mKnown = std::move(after);
        ++mDone;
        return true;
    }
    mFindings.push_back(std::string(method) + " was refused: " + pellwick::FailureText(code, result));
    result = nullptr;
    return true;
}

bool RandomClient::DoOne() {
    switch (Random(10)) {
        case 0:
        case 1:
            return AddFont();
        case 2:
            return RemoveFont();
        case 3:
        case 4:
            return Activate();
        case 5:
            return Lease();
        case 6:
            return MakeSet();
        case 7:
            return Random(3) == 0 ? DeleteSet() : FillSet();
        default:
            return DisturbShared();
    }
}

/// What becomes of it depends on the others, so it may be refused as well.
bool RandomClient::DisturbShared() {
    const FontSource& source = mShared[Random(mShared.size())];
    const auto id = mIDs.fonts.find(source.checksum);
    Json result;
    if (id == mIDs.fonts.end() || Random(2) == 0) {
        const Json path = {{"path", source.paths[Random(source.paths.size())]}};
        if (mConnection->Call(method::kAddFile, path, result) == CoreErrorCodes::kSuccess)
            mIDs.fonts[source.checksum] = result["fonts"][0]["DatabaseID"];
    } else {
        const char* method = std::array{method::kRemoveFonts, method::kActivateForUser,
                                        method::kActivateFonts, method::kDeactivateForUser}[Random(4)];
        (void)mConnection->Call(method, {{"fonts", {id->second}}, {"document", "shared"}}, result);
        if (method == method::kRemoveFonts)
            mIDs.fonts.erase(id);
    }
    return !mConnection->HasFailed();
}

bool RandomClient::AddFont() {
    const FontSource& source = mOwn[Random(mOwn.size())];
    Json result;
    if (!Ask(
            method::kAddFile, {{"path", source.paths[Random(source.paths.size())]}},
            [&](LibraryFacts& facts) { facts.fonts.try_emplace(source.checksum); }, result))
        return false;
    if (result.is_object())
        mIDs.fonts[source.checksum] = result["fonts"][0]["DatabaseID"];
    return true;
}

std::vector<std::string> RandomClient::SomeFonts(size_t most) {
    std::vector<std::string> there;
    for (const auto& [checksum, facts] : mKnown.fonts)
        there.push_back(checksum);
    std::shuffle(there.begin(), there.end(), mRandom);
    there.resize(std::min(there.size(), 1 + Random(most)));
    return there;
}

Json RandomClient::IDsOf(const std::vector<std::string>& checksums) const {
    Json ids = Json::array();
    for (const std::string& checksum : checksums)
        ids.push_back(mIDs.fonts.at(checksum));
    return ids;
}

bool RandomClient::RemoveFont() {
    const std::vector<std::string> fonts = SomeFonts(2);
    const auto remove = [&](LibraryFacts& facts) {
        for (const std::string& checksum : fonts) {
            facts.fonts.erase(checksum);
            for (auto& [name, members] : facts.sets)
                members.erase(checksum);
        }
    };
    Json result;
    return Ask(method::kRemoveFonts, {{"fonts", IDsOf(fonts)}}, remove, result);
}

bool RandomClient::Activate() {
    const std::vector<std::string> fonts = SomeFonts(3);
    const bool isOn = Random(2) == 0;
    const auto activate = [&](LibraryFacts& facts) {
        for (const std::string& checksum : fonts)
            facts.fonts[checksum].isUsers = isOn;
    };
    Json result;
    const char* method = isOn ? method::kActivateForUser : method::kDeactivateForUser;
    if (!Ask(method, {{"fonts", IDsOf(fonts)}}, activate, result))
        return false;
    if (isOn && result.is_object() && !result["failed"].empty())
        mFindings.push_back("a font of its own could not be activated");
    return true;
}

bool RandomClient::LeaseByName(const std::string& checksum) {
    const auto source = std::find_if(mOwn.begin(), mOwn.end(), [&](const FontSource& candidate) {
        return candidate.checksum == checksum;
    });
    Json result;
    if (!Ask(
            method::kActivateDocumentFonts, {{"fonts", {source->postScriptName}}, {"document", mName}},
            [&](LibraryFacts& facts) { facts.fonts[checksum].isLeased = true; }, result))
        return false;
    if (result.is_object() && result["matched"].size() != 1)
        mFindings.push_back("a font of a document was not found");
    return true;
}

bool RandomClient::Lease() {
    const std::vector<std::string> fonts = SomeFonts(3);
    const bool isOn = Random(2) == 0;
    if (isOn && fonts.size() == 1)
        return LeaseByName(fonts.front());
    const auto lease = [&](LibraryFacts& facts) {
        for (const std::string& checksum : fonts)
            facts.fonts[checksum].isLeased = isOn;
    };
    Json result;
    return Ask(isOn ? method::kActivateFonts : method::kDeactivateFonts,
               {{"fonts", IDsOf(fonts)}, {"document", mName}}, lease, result);
}

bool RandomClient::MakeSet() {
    constexpr size_t kMostSets = 8;
    if (mKnown.sets.size() >= kMostSets)
        return DeleteSet();
    const std::string name = mName + " " + std::to_string(++mSetNumber);
    Json result;
    if (!Ask(
            method::kCreateSet, {{"name", name}}, [&](LibraryFacts& facts) { facts.sets[name]; }, result))
        return false;
    if (result.is_object())
        mIDs.sets[name] = result[pellwick::member::kID];
    return true;
}

std::string RandomClient::AnySet() {
    return mKnown.sets.empty()
               ? std::string()
               : std::next(mKnown.sets.begin(), static_cast<std::ptrdiff_t>(Random(mKnown.sets.size())))
                     ->first;
}

bool RandomClient::FillSet() {
    const std::string name = AnySet();
    if (name.empty())
        return MakeSet();
    const std::vector<std::string> fonts = SomeFonts(5);
    const auto fill = [&](LibraryFacts& facts) { facts.sets[name].insert(fonts.begin(), fonts.end()); };
    Json result;
    return Ask(method::kAddFontsToSets, {{"fonts", IDsOf(fonts)}, {"sets", {mIDs.sets.at(name)}}}, fill,
               result);
}

bool RandomClient::DeleteSet() {
    const std::string name = AnySet();
    if (name.empty())
        return MakeSet();
    Json result;
    return Ask(
        method::kDeleteSet, {{"set", mIDs.sets.at(name)}},
        [&](LibraryFacts& facts) { facts.sets.erase(name); }, result);
}

// What panels get from the client library: sets, smart lists, images of names, what is known of documents.
#include <fstream>
#include <set>

#include "common/FontManagerLimits.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "tests/support/ClientTest.h"

namespace pellwick::test {
namespace {

class ClientLists : public ClientTest {
protected:
    int32_t CreateList(const char* name, const IDs& sets) {
        return Told<int32_t>(CreateSmartList, name, nullptr, sets, nullptr);
    }
    int32_t CreatePoster() {
        const auto set = Told<int32_t>(CreateTopLevelSet, "Poster", kLibraryID);
        EXPECT_EQ(Ask(AddFontsToSets, IDs{kItalic}, IDs{set}), 0u);
        return set;
    }
    size_t CountFonts(int32_t list) { return Filled(GetSmartListFonts, list).size(); }
    ErrorCode ReadXmp(const std::string& path, std::string& text) {
        CFStringRef xmp = nullptr;
        const ErrorCode code = Ask(GetAdobeXMPData, path, &xmp);
        text = cf::ToUtf8(AdoptCF(xmp).get());
        return code;
    }
};

TEST_F(ClientLists, FontsArePutTogetherInSets) {
    const int64_t poster = CreatePoster();
    int32_t untouched = -5;
    const auto create = [&](const char* newName, int32_t workgroup) {
        return Ask(CreateTopLevelSet, newName, workgroup, &untouched);
    };
    ExpectCodes(
        {{create("Poster", kLibraryID), CoreErrorCodes::kItemAlreadyExists},
         {create("", kLibraryID), CoreErrorCodes::kMissingParam},
         {create("New", kWorkgroupID_All), GZephyrinSetManager::kCannotCreateSharedSetsInAllFontsWorkgroup},
         {create("New", kSystemID), GZephyrinSetManager::kCannotAddSetsToSystemWorkgroup},
         {create("New", 999), GZephyrinSetManager::kWorkGroupIDDoesNotExist},
         {Ask(AddFontsToSets, IDs{kBold, -1}, IDs{poster}), CoreErrorCodes::kNotFound},
         {Ask(AddFontsToSets, IDs{kBold}, IDs{poster, 999}), GZephyrinSetManager::kSetNotFound}});
    EXPECT_EQ(untouched, -5);
    EXPECT_EQ(mWorld.RunForJson({"set", "show", "Poster"})["fonts"].size(), 1u);
}

TEST_F(ClientLists, ASmartListIsMadeChangedAndDeleted) {
    const int32_t set = CreatePoster();
    const int32_t posters = CreateList("Plakate \u5b57\u4f53", {set});
    const int32_t all = CreateList("Everything", {});
    EXPECT_EQ(NamesOf(Filled(GetSmartListFonts, posters)), std::vector<std::string>{"Sample-Italic"});
    EXPECT_EQ(Ask(RenameSmartList, posters, "Posters"), 0u);
    EXPECT_EQ(Ask(SetSmartListQuery, posters, IDs{1}, IDs{9, set}, IDs{all}), 0u);
    const Json list = Given<CFDictionaryRef>(GetSmartList, posters);
    EXPECT_EQ(list[kGS_SmartListIDKey], posters);
    EXPECT_EQ(Json::parse(StringMember(list, kGS_ListDefinitionKey)), (Json{{"smartListID", posters},
                                                                            {"smartListName", "Posters"},
                                                                            {"workgroupIDs", {1}},
                                                                            {"setIDs", {set, 9}},
                                                                            {"smartSetIDs", {all}}}));
    EXPECT_EQ(Filled(GetAllSmartLists)[1][kGS_SmartListNameKey], "Posters");
    int32_t untouched = -5;
    CFDictionaryRef found = nullptr;
    const auto fonts = cf::MutableArray();
    const auto create = [&](const char* name, const IDs& sets) {
        return Ask(CreateSmartList, name, nullptr, sets, nullptr, &untouched);
    };
    constexpr ErrorCode kGone = GZephyrinSetManager::kSetNotFound;
    ExpectCodes({{create("Everything", {}), CoreErrorCodes::kItemAlreadyExists},
                 {create(" ", {}), CoreErrorCodes::kMissingParam},
                 {create("New", {(int64_t{1} << 32) + 1}), CoreErrorCodes::kInvalidParam},
                 {Ask(RenameSmartList, posters, "Everything"), CoreErrorCodes::kItemAlreadyExists},
                 {Ask(RenameSmartList, posters, "Posters"), 0},
                 {Ask(DeleteSmartList, all), 0},
                 {Ask(DeleteSmartList, all), kGone},
                 {Ask(GetSmartList, all, &found), kGone},
                 {Ask(GetSmartListFonts, all, fonts), kGone},
                 {Ask(SetSmartListQuery, all, nullptr, nullptr, nullptr), kGone}});
    EXPECT_EQ(untouched, -5);
}

TEST_F(ClientLists, AQueryIsTriedForTheOneWhoTriesItAndNotSaved) {
    const int32_t set = CreatePoster();
    const int32_t list = CreateList("Everything", {});
    for (const auto& [id, code] :
         {std::pair{list, ErrorCode{0}}, {0, 0}, {list + 1, GZephyrinSetManager::kSetNotFound}}) {
        EXPECT_EQ(Ask(QueryForSmartListFonts, id, nullptr, IDs{set}, nullptr), code);
        EXPECT_TRUE(code != 0 || CountFonts(id) == 1);
    }
    EXPECT_EQ(mWorld.RunForJson({"smartlist", "fonts", "Everything"})["fonts"].size(), 3u);
    EXPECT_EQ(Ask(SetSmartListQuery, list, nullptr, nullptr, nullptr), 0u);
    EXPECT_EQ(CountFonts(list), 3u);

    const Json tree = Given<CFDictionaryRef>(GetPanelSmartListTree);
    EXPECT_EQ(tree[kGS_WorkgroupsKey][0][kGS_SetsKey],
              Json::array({{{kGS_SetIDKey, set}, {kGS_SetNameKey, "Poster"}}}));
    EXPECT_TRUE(tree[kGS_WorkgroupsKey][1][kGS_SetsKey].empty());
    EXPECT_EQ(tree[kGS_SmartListsKey][0][kGS_SmartListIDKey], list);
}

TEST_F(ClientLists, PreviewsArriveByFontAndThoseOfHighPriorityFirst) {
    Listen();
    const auto fontPNGs = cf::MutableDictionary();
    ASSERT_EQ(Ask(RenderFontNamePreviewPNGs, IDs{3}, IDs{1, 2, 3, 999}, fontPNGs), 0u);
    EXPECT_EQ(CFDictionaryGetCount(fontPNGs.get()), 3);
    EXPECT_EQ(Given<CFStringRef>(GetRenderedPNGsDirectory), mWorld.Path("cache/Vantorix/Pellwick/previews"));
    std::set<std::string> paths;
    for (const int64_t font : {1, 2, 3}) {
        for (const char* key : {kGS_PNGFilenameKey, kGS_2xPNGFilenameKey}) {
            const std::string path =
                StringMember(JsonOf(CFDictionaryGetValue(fontPNGs.get(), cf::Number(font).get())), key);
            EXPECT_TRUE(path.starts_with(mWorld.Path("cache/")) && platform::IsExistingFile(path)) << path;
            paths.insert(path);
        }
    }
    EXPECT_EQ(paths.size(), 6u);
    mWorld.RunForJson({"logout"});
    EXPECT_TRUE(IsNoted(kPluginCallback_LoggedOut));
    EXPECT_EQ(notes.received, (std::vector<Notes::Note>{{kPluginCallback_PreviewPNGsRendered, 1},
                                                        {kPluginCallback_PreviewPNGsRendered, 2},
                                                        {kPluginCallback_LoggedOut, 0}}));
}

TEST_F(ClientLists, WhatADocumentUsesIsRemembered) {
    const char* const path = "/Dokumente/\u0448\u0440\u0438\u0444\u0442.indd";
    CFStringRef usage = nullptr;
    EXPECT_EQ(Ask(GetFontUsage, path, &usage), CoreErrorCodes::kNotFound);
    EXPECT_EQ(Ask(SaveDocumentFonts, path, true, "{\"pages\":3}"), 0u);
    EXPECT_EQ(Ask(SaveDocumentFonts, path, false, nullptr), 0u);
    EXPECT_EQ(Given<CFStringRef>(GetFontUsage, path), "{\"pages\":3}");
    EXPECT_EQ(Ask(ClearDocumentSlug, path), 0u);
    EXPECT_EQ(Ask(GetFontUsage, path, &usage), CoreErrorCodes::kNotFound);
}

TEST_F(ClientLists, TheMetadataOfADocumentIsItsFirstWholePacket) {
    const std::string packet =
        "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0\"?><x>\u5b57\u4f53</x><?xpacket end=\"w\"?>";
    const std::string filler(1 << 20, '\xFE');
    const std::string rest = packet + filler + "<?xpacket begin=''?>later<?xpacket end='w'?>";
    const auto repeated = [](const std::string& text) {
        std::string document;
        while (document.size() < kMaxXmpSearch / 4)
            document += text;
        return document;
    };
    const std::pair<std::string, bool> documents[] = {
        {rest, true},
        {filler.substr(7) + rest, true},  // the marker stands across two pieces
        {filler + "<?xpacket begin=''?>\xFF<?xpacket end='r'?>" + rest, true},
        {"", false},
        {packet.substr(0, packet.size() - 1), false},
        {"<?xpacket begin=''?>" + std::string(kMaxXmpPacket, 'x') + packet.substr(40), false},
        // Where each beginning is looked into for its own end, any of these takes for ever.
        {repeated("<?xpacket begin=<?xpacket end="), false},
        {repeated("<?xpacket begin=<?xpacket end=\xFF?>"), false},
        {repeated("<?xpacket begin=\xC3") + "?>", false}};
    std::string text;
    for (const auto& [document, isFound] : documents) {
        EXPECT_EQ(ReadXmp(mWorld.Write("document", document), text), isFound ? 0u : CoreErrorCodes::kNotFound)
            << document.substr(0, 60);
        EXPECT_EQ(text, isFound ? packet : "");
    }
    for (const char* path : {"absent", ""})
        EXPECT_EQ(ReadXmp(mWorld.Path(path), text), error_codes::GFileSystem::kFileNotFound);
    // A huge one is searched at both ends; it takes no room on the disk.
    const std::string huge = mWorld.Write("document", "x");
    std::filesystem::resize_file(platform::Utf8Path(huge), 2 * kMaxXmpSearch);
    EXPECT_EQ(ReadXmp(huge, text), CoreErrorCodes::kNotFound);
    std::ofstream(platform::Utf8Path(huge), std::ios::binary | std::ios::app) << packet;
    EXPECT_EQ(ReadXmp(huge, text), 0u);
}

}  // namespace
}  // namespace pellwick::test

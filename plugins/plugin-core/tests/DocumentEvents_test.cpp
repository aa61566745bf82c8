#include "DocumentEvents.h"

#include <nlohmann/json.hpp>

#include "CommandDialog.h"
#include "DocumentCommands.h"
#include "FakeWorld.h"
#include "PluginCoreInterface.h"
#include "TemporaryFolder.h"
#include "platform/Utf8Path.h"

using nlohmann::json;
using testing::ElementsAre, testing::HasSubstr;

namespace {

class DocumentEventsTest : public FakeWorld {
protected:
    DocumentEventsTest() { path = folder.Write("Dokument 字.ai", "no fonts in here"); }

    ErrorCode Open(const std::string& fontsJSON = R"([{"PostScriptName":"Seven"}])", size_t size = 65536) {
        bufferA.assign(size + 1, '\0');
        bufferB.assign(size + 1, '\0');
        size_t sizeA = size;
        size_t sizeB = size;
        return DocumentEvents::HandleOpenExistingDocument(path, fontsJSON, bufferA.data(), &sizeA,
                                                          bufferB.data(), &sizeB, &numFontsActivated);
    }
    ErrorCode Close(const std::string& hint = "") { return DocumentEvents::HandleCloseDocument(path, hint); }
    /// The fonts that activation was asked for last.
    std::string Wanted() const { return cf::ToUtf8(AdoptCF(CFCopyDescription(library.wanted.get())).get()); }
    std::string Identifier() {
        char buffer[100] = "";
        size_t size = sizeof buffer;
        EXPECT_EQ(DocumentEvents::GetIDForDocument(path, buffer, &size), CoreErrorCodes::kSuccess);
        return buffer;
    }

    TemporaryFolder folder;
    std::string path;
    std::string bufferA;
    std::string bufferB;
    int numFontsActivated = 42;
};

}  // namespace

TEST_F(DocumentEventsTest, EachListHasABufferAndASizeOfItsOwn) {
    MakeFunctional();
    library.fonts = {{7, "Seven"}};
    library.unmatchedFonts = {"Gone"};
    ASSERT_EQ(Open(), PLUGINCORE_FONTS_ACTIVATED);
    const std::string listA = bufferA.c_str();
    const std::string listB = bufferB.c_str();
    library.activationStateBefore = kFontActivationState_ActivatedByPlugin;
    for (const auto& [roomA, roomB] : {std::pair{1u, 1u}, {1u, 0u}, {0u, 1u}}) {
        std::string a(4096, '#');
        std::string b(4096, '#');
        size_t sizeA = listA.size() + roomA;
        size_t sizeB = listB.size() + roomB;
        EXPECT_EQ(DocumentEvents::HandleOpenExistingDocument(path, "[]", a.data(), &sizeA, b.data(), &sizeB,
                                                             &numFontsActivated),
                  roomA + roomB == 2 ? CoreErrorCodes::kSuccess : CoreErrorCodes::kIndexOutOfRange);
        const std::string end("\0#", 2);  // and not a byte more
        EXPECT_EQ(a.starts_with(listA + end), roomA == 1);
        EXPECT_EQ(b.starts_with(listB + end), roomB == 1);
    }
    framework.numbers["CloseFontsOnDocClose"] = 1;
    EXPECT_EQ(Close(), 0u);
    EXPECT_EQ(library.CallsOf("DeactivateFonts"), 1) << "a buffer too small does not undo the activation";
}

TEST_F(DocumentEventsTest, WhatIsHandedOverIsTheHintElseTheStoredUsage) {
    MakeFunctional();
    Open();
    const auto saved = [&] {
        std::string usages;
        const std::string call = "SaveDocumentFonts('" + path + "', 1, ";
        for (const std::string& each : std::exchange(library.given, {}))
            usages += each.starts_with(call) ? each.substr(call.size()) : "";
        return usages;
    };
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "hint"), 0u);
    EXPECT_EQ(DocumentEvents::UpdateDocumentFontUsage(path, "stored"), 0u);
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, ""), 0u);
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "hint"), 0u);
    EXPECT_EQ(saved(), "'hint')'stored')'hint')");
    std::filesystem::last_write_time(platform::Utf8Path(path),
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(Close("last"), 0u);
    EXPECT_EQ(saved(), "'last')") << "written behind the host";
    Open();
    library.codes["SaveDocumentFonts"] = {CoreErrorCodes::kError};
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "failed"), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(Close(), 0u);
    EXPECT_EQ(saved(), "'')") << "tried again at close";
    Open();
    library.codes["SaveDocumentFonts"] = {CoreErrorCodes::kError};
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "failed"), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "again"), 0u);
    EXPECT_EQ(Close(), 0u);
    EXPECT_EQ(saved(), "'again')") << "once";
    Open();
    std::filesystem::last_write_time(platform::Utf8Path(path),
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(2));
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "written"), 0u);
    EXPECT_EQ(Close("last"), 0u);
    EXPECT_EQ(saved(), "'written')") << "by the host itself";
    Open();
    library.codes["SaveDocumentFonts"] = {CoreErrorCodes::kError};
    EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "failed"), CoreErrorCodes::kUnknownError);
    std::filesystem::last_write_time(platform::Utf8Path(path),
                                     std::filesystem::file_time_type::clock::now() + std::chrono::hours(3));
    Open();
    EXPECT_EQ(Close(), 0u);
    EXPECT_EQ(saved(), "") << "what was opened anew has nothing to hand over";
    Open();
    saved();
    for (const auto& [isEnabled, isLoggedIn] : {std::pair{0, true}, {1, false}}) {
        framework.numbers["EnablePlugin"] = isEnabled;
        MarquellGlobals::SetLoggedIn(library.isLoggedIn = isLoggedIn);
        EXPECT_EQ(DocumentEvents::HandleSaveDocument(path, "hint"), CoreErrorCodes::kUnknownError);
    }
    EXPECT_EQ(saved(), "");
}

TEST_F(DocumentEventsTest, ANewDocumentGetsItsPathLaterOrNever) {
    char buffer[37] = "";
    size_t size = 36;
    EXPECT_EQ(DocumentEvents::HandleCreateNewDocument(buffer, &size), CoreErrorCodes::kInvalidParam);
    ASSERT_EQ(AllTrackedDocuments::GetSharedInstance().Documents().size(), 1u) << "tracked all the same";
    EXPECT_TRUE(AllTrackedDocuments::GetSharedInstance().Documents()[0]->isNewDocument);
    size = sizeof buffer;
    ASSERT_EQ(DocumentEvents::HandleCreateNewDocument(buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_EQ(DocumentEvents::SetPathForDocument(path, "no such document"), CoreErrorCodes::kNotFound);
    EXPECT_EQ(DocumentEvents::SetPathForDocument(path, buffer), CoreErrorCodes::kSuccess);
    EXPECT_EQ(Identifier(), buffer);
    EXPECT_EQ(DocumentEvents::GetIDForDocument("/no/such/path", buffer, &size), CoreErrorCodes::kNotFound);
    for (const std::string& document : {Identifier(), path}) {
        EXPECT_EQ(DocumentEvents::UpdateDocumentFontUsage(document, "usage of " + document), 0u);
        EXPECT_EQ(AllTrackedDocuments::GetSharedInstance().FindTrackedDocumentByPath(path)->fontUsage,
                  "usage of " + document);
    }
    EXPECT_EQ(DocumentEvents::UpdateDocumentFontUsage("neither", "usage"), CoreErrorCodes::kNotFound);

    ASSERT_EQ(DocumentEvents::HandleCreateNewDocument(buffer, &size), CoreErrorCodes::kSuccess);
    EXPECT_EQ(DocumentEvents::HandleCloseDocument(buffer, ""), CoreErrorCodes::kSuccess);
    EXPECT_EQ(DocumentEvents::HandleCloseDocument(buffer, ""), CoreErrorCodes::kUnknownError);
    EXPECT_EQ(Close(), CoreErrorCodes::kSuccess) << "the other one was left alone";
    EXPECT_EQ(DocumentEvents::HandleCreateNewDocument(buffer, &size), CoreErrorCodes::kSuccess);
    AllTrackedDocuments::GetSharedInstance().FindTrackedDocumentByIdentifier(buffer)->isSavePending = true;
    MakeFunctional();
    EXPECT_EQ(DocumentEvents::HandleCloseDocument(buffer, ""), CoreErrorCodes::kSuccess);
    EXPECT_EQ(library.CallsOf("SaveDocumentFonts"), 0) << "whose file is another document's";
}

TEST_F(DocumentEventsTest, ChosenFontsNeedATrackedDocumentAndAList) {
    MakeFunctional();
    uint32_t count = 42;
    EXPECT_EQ(DocumentEvents::ActivateChosenFonts(path, R"([{"DatabaseID":7}])", &count),
              CoreErrorCodes::kNotFound);
    for (const char* none : {R"([{"DatabaseID":7,"ActivationStatus":1}])", ""})
        EXPECT_EQ(DocumentEvents::ActivateChosenFonts(path, none, &count), 0u);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(DocumentEvents::ActivateChosenFonts(path, "{}", &count), CoreErrorCodes::kInvalidParam);
    Open();
    library.fonts = {{7, "Seven"}};
    EXPECT_EQ(DocumentEvents::ActivateChosenFonts(path, R"([{"DatabaseID":7},{"DatabaseID":8}])", &count),
              0u);
    EXPECT_EQ(count, 1u);
    EXPECT_THAT(library.given,
                testing::Contains(testing::StartsWith("ActivateFonts([-1,-1], '" + Identifier() + "'")));
    EXPECT_EQ(Wanted(), "({DatabaseID = 7}, {DatabaseID = 8})");
}

TEST_F(DocumentEventsTest, WhatIsAskedForGoesByThePreferences) {
    MakeFunctional();
    const char* fonts = R"([{"PostScriptName":"A","Checksum":"c","Glyphscan_1.2_Checksum":"g"},
                            {"PostScriptName":"B","SubDocumentsWithFont":["/x.ai"]}])";
    const std::pair<const char*, const char*> cases[] = {
        {"none", "({PostScriptName = A, ExactMatch = true})"},
        {"PickBestMatch", "({PostScriptName = A})"},
        {"EnableGlyphscan",
         "({Checksum = c, Glyphscan_1.2_Checksum = g, PostScriptName = A, ExactMatch = true})"},
        {"SupportEmbeddedObjects",
         "({PostScriptName = A, ExactMatch = true}, "
         "{PostScriptName = B, SubDocumentsWithFont = (/x.ai), ExactMatch = true})"},
        {"ActivateEntireFamilies", "({PostScriptName = A, ExactMatch = true, EntireFamily = true})"}};
    for (const auto& [preference, wanted] : cases) {
        framework.numbers[preference] = 1;
        Open(fonts);
        EXPECT_EQ(Wanted(), wanted) << preference;
        framework.numbers[preference] = 0;
    }
}

TEST_F(DocumentEventsTest, WhateverTheUserDoesAnAgentThatIsBackIsNoticed) {
    MakeFunctional();
    uint32_t count = 0;
    const std::function<void()> actions[] = {
        [&] { Open(); }, [&] { DocumentEvents::HandleSaveDocument(path, ""); },
        [&] { DocumentEvents::ActivateChosenFonts(path, "[]", &count); }, [&] { Close(); },
        [&] { CommandDialog::InvokeCommandDialog(path.c_str()); }};
    for (const auto& act : actions) {
        FontManagerInterface::GetSharedInstance().GetFontManager()->LoseServices();
        act();
        EXPECT_TRUE(MarquellGlobals::ArePluginServicesEnabled()) << &act - actions;
    }
}

TEST_F(DocumentEventsTest, WithoutAListTheFileIsSearchedAndWhereThatFailsTheListIsEmpty) {
    MakeFunctional();
    path = folder.Write("a.ai", "<< /FontName /Comic /Flags 4 >>");
    EXPECT_EQ(Open(""), 0u);
    EXPECT_EQ(Wanted(), "({PostScriptName = Comic, ExactMatch = true})");
    path = folder / "missing.ai";
    EXPECT_EQ(Open(""), 0u);
    EXPECT_THAT(trace.Text(), HasSubstr("Error="));
    EXPECT_EQ(Wanted(), "()");
}

TEST_F(DocumentEventsTest, FromBehindADialogNoOtherEventMovesFonts) {
    MakeFunctional();
    library.fonts = {{7, "Seven"}};
    framework.numbers["CloseFontsOnDocClose"] = 1;
    Open();
    library.codes["DeactivateFonts"] = {GAgentIF::kShutdown, GAgentIF::kShutdown, GAgentIF::kShutdown};
    std::vector<ErrorCode> refused;
    uint32_t count = 7;
    bool isBehind = false;
    framework.whileDialogShows = [&] {
        if (!std::exchange(isBehind, true))
            refused = {Open(), Close(), DocumentEvents::ActivateChosenFonts(path, "[]", &count),
                       DocumentCommands::HandleCheckDocumentFonts(path, R"([{"PostScriptName":"Seven"}])")};
    };
    const int activations = library.CallsOf("ActivateDocumentFontsByPath");
    EXPECT_EQ(Close(), CoreErrorCodes::kSuccess);  // the agent is lost twice: the user is told
    EXPECT_THAT(refused, ElementsAre(CoreErrorCodes::kUnknownError, CoreErrorCodes::kUnknownError,
                                     CoreErrorCodes::kUnknownError, CoreErrorCodes::kOutOfMemory));
    EXPECT_EQ(library.CallsOf("ActivateDocumentFontsByPath"), activations);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(Close(), CoreErrorCodes::kUnknownError) << "the outer close did its work";
}

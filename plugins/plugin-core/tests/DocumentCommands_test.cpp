#include "DocumentCommands.h"

#include "CommonFunctionality.h"
#include "FakeWorld.h"
#include "HostPatience.h"
#include "platform/Files.h"

using testing::ElementsAre;

namespace {

using MessageBox = std::pair<uint32_t, uint32_t>;

class DocumentCommandsTest : public FakeWorld {
protected:
    DocumentCommandsTest() {
        MakeFunctional();
        FontManagerInterface::GetSharedInstance().SetDefaultWorkgroupID(7);
        library.fonts = {{11, "Sample-Regular"}, {12, "Sample-Bold"}};
    }
    /// As if the host had opened it; its fonts are those of the library.
    void OpenDocument(const std::string& path = "/jobs/poster.v2.ai") {
        auto record = std::make_shared<OneTrackedDocument>();
        record->SetIdentifier("ID");
        AllTrackedDocuments::GetSharedInstance().AddDocument(record, path);
        int numFontsActivated = 0;
        EXPECT_EQ(
            CommonFunctionality::ActivateDocumentFontsSilently(numFontsActivated, path, *record, nullptr),
            0u);
        document = path;
    }
    std::string document = "/nowhere.ai";
};

const std::string kDestination = std::string("/output") + platform::kPathSeparator + "poster.v2 Fonts";
constexpr ErrorCode kNotCompleted = CoreErrorCodes::kOutOfMemory;

}  // namespace

TEST_F(DocumentCommandsTest, FontsAreCollectedOneByOneBelowTheChosenFolder) {
    OpenDocument();
    framework.chosenFolder = "/output";
    FakeClock clock;
    library.answer = [&](const std::string& symbol) {
        clock.ticks += symbol == "ExportFonts" ? 3000 : 0;
        return CoreErrorCodes::kSuccess;
    };
    {
        const HostPatience::Call call;  // which may take its time, since there is a bar to look at
        EXPECT_EQ(DocumentCommands::HandleExportDocumentFonts(document), 0u);
    }
    library.answer = nullptr;
    EXPECT_THAT(library.exportedTo, ElementsAre(kDestination, kDestination));
    EXPECT_EQ(framework.initialFolder, "/jobs/") << "the document's own folder, the first time";
    EXPECT_EQ(framework.texts["LastCFOFolder"], "/output");
    using Step = std::array<int64_t, 3>;
    EXPECT_THAT(framework.progress, ElementsAre(Step{204, 0, 2}, Step{204, 1, 2}, Step{204, 2, 2}));
    EXPECT_THAT(framework.shownBoxes, ElementsAre(MessageBox(204, 650)));
    EXPECT_THAT(framework.subjects, ElementsAre(kDestination));
    EXPECT_EQ(DocumentCommands::HandleExportDocumentFonts("ID"), 0u) << "known by its identifier too";
    EXPECT_EQ(framework.initialFolder, "/output");
    EXPECT_EQ(library.CallsOf("ActivateDocumentFontsByPath"), 1) << "they were found when it was opened";
}

TEST_F(DocumentCommandsTest, WhatCollectingCameToIsTold) {
    // Codes of exporting, what comes of it, the text of the message box, and how many fonts are exported.
    const std::tuple<std::deque<ErrorCode>, ErrorCode, uint32_t, size_t> cases[] = {
        {{GZephyrinExportFonts::kFontUnavailableToExport}, 0, 651, 1},
        {{0, GZephyrinExportFonts::kCouldNotCopyFile}, kNotCompleted, 653, 1},
        {{GZephyrinExportFonts::kNotGrantedPermissionToExportFonts}, kNotCompleted, 661, 0}};
    OpenDocument();
    framework.chosenFolder = "/output/";
    for (const auto& [codes, result, text, exported] : cases) {
        library.exportedTo.clear();
        library.codes["ExportFonts"] = codes;
        EXPECT_EQ(DocumentCommands::HandleExportDocumentFonts(document), result) << text;
        EXPECT_EQ(framework.shownBoxes.back(), MessageBox(204, text));
        EXPECT_EQ(library.exportedTo.size(), exported) << text;
        library.codes.clear();
    }
    framework.stepsUntilStopped = 2;
    EXPECT_EQ(DocumentCommands::HandleExportDocumentFonts(document), kNotCompleted);
    EXPECT_EQ(framework.shownBoxes.back(), MessageBox(204, 654));
}

TEST_F(DocumentCommandsTest, WithoutFontsThereIsAnEmptyFolderAndWithoutAFolderNothing) {
    library.fonts.clear();
    OpenDocument();
    EXPECT_EQ(DocumentCommands::HandleExportDocumentFonts(document), kNotCompleted);
    EXPECT_TRUE(framework.shownBoxes.empty()) << "the user knows";
    EXPECT_EQ(framework.texts["LastCFOFolder"], "");
    framework.chosenFolder = "/output";
    EXPECT_EQ(DocumentCommands::HandleExportDocumentFonts(document), 0u);
    EXPECT_THAT(library.given, testing::Contains("OSCreateDirectory('" + kDestination + "')"));
    EXPECT_THAT(framework.shownBoxes, ElementsAre(MessageBox(204, 652)));
}

TEST_F(DocumentCommandsTest, ASetOfTheDocumentsFontsIsMadeUnderAFreeName) {
    OpenDocument();
    library.codes["CreateTopLevelSet"] = {CoreErrorCodes::kItemAlreadyExists,
                                          CoreErrorCodes::kItemAlreadyExists};
    EXPECT_EQ(DocumentCommands::HandleCreateDocumentSet(document), 0u);
    EXPECT_THAT(library.given, testing::IsSupersetOf(
                                   {"CreateTopLevelSet('poster.v2 3', 7)", "AddFontsToSets([11,12], [5])"}));
    EXPECT_THAT(framework.shownBoxes, ElementsAre(MessageBox(205, 658)));
    EXPECT_THAT(framework.subjects, ElementsAre("poster.v2 3"));
    library.codes["CreateTopLevelSet"].assign(99, CoreErrorCodes::kItemAlreadyExists);
    EXPECT_EQ(DocumentCommands::HandleCreateDocumentSet(document), kNotCompleted) << "none is free";
    EXPECT_EQ(library.CallsOf("CreateTopLevelSet"), 3 + 99);
    library.codes.clear();
    auto openedWhileOff = std::make_shared<OneTrackedDocument>();
    AllTrackedDocuments::GetSharedInstance().AddDocument(openedWhileOff, "/off.ai");
    EXPECT_EQ(DocumentCommands::HandleCreateDocumentSet("/off.ai"), 0u);
    EXPECT_EQ(library.CallsOf("AddFontsToSets"), 2) << "its fonts are looked for now";
}

TEST_F(DocumentCommandsTest, ASetNeedsOneWorkgroupAndFonts) {
    OpenDocument();
    FontManagerInterface::GetSharedInstance().SetDefaultWorkgroupID(kWorkgroupID_All);
    EXPECT_EQ(DocumentCommands::HandleCreateDocumentSet(document), kNotCompleted);
    EXPECT_THAT(framework.shownBoxes, ElementsAre(MessageBox(205, 659)));
    library.fonts.clear();
    OpenDocument("/empty.ai");
    EXPECT_EQ(DocumentCommands::HandleCreateDocumentSet(document), kNotCompleted);
    EXPECT_EQ(framework.shownBoxes.back(), MessageBox(206, 656));
    EXPECT_EQ(library.CallsOf("CreateTopLevelSet"), 0);
}

TEST_F(DocumentCommandsTest, CheckingActivatesWhatTheDocumentUsesNow) {
    OpenDocument();
    library.calls.clear();
    const char* fonts = R"([{"PostScriptName":"Sample-Regular"}])";
    EXPECT_EQ(DocumentCommands::HandleCheckDocumentFonts(document, fonts), 0u);
    EXPECT_EQ(library.CallsOf("ActivateDocumentFontsByPath"), 1);
    EXPECT_THAT(framework.shownBoxes, ElementsAre(MessageBox(206, 655)));
    EXPECT_EQ(DocumentCommands::HandleCheckDocumentFonts(document, "[]"), 0u);
    EXPECT_EQ(framework.shownBoxes.back(), MessageBox(206, 656)) << "and there is no such file to read";
    MarquellGlobals::SetPluginServicesEnabled(false);
    EXPECT_EQ(DocumentCommands::HandleCheckDocumentFonts(document, fonts), kNotCompleted);
    EXPECT_EQ(framework.shownBoxes.back(), MessageBox(206, 657));
}

TEST_F(DocumentCommandsTest, MissingFontsAreNamedAndReplacedAsTheUserChooses) {
    OpenDocument();
    library.unmatchedFonts = {"Gone-Roman"};
    library.activationStateAfter = kFontActivationState_Missing;
    const char* fonts = R"([{"PostScriptName":"Gone-Roman"}])";
    EXPECT_EQ(DocumentCommands::HandleCheckDocumentFonts(document, fonts), 0u);
    EXPECT_THAT(framework.shownBoxes, ElementsAre(MessageBox(206, 662)));
    EXPECT_THAT(framework.subjects, ElementsAre("Gone-Roman, Sample-Regular, Sample-Bold"));
    EXPECT_TRUE(framework.shownDialogs.empty()) << "there is nothing to choose from";

    library.replacementID = 12;
    framework.replacements = FakeFramework::Replacements{{"Gone-Roman", "Replacement"}};
    library.calls.clear();
    EXPECT_EQ(DocumentCommands::HandleCheckDocumentFonts(document, fonts), 0u);
    EXPECT_THAT(framework.shownDialogs, ElementsAre("ResolveFonts"));
    EXPECT_EQ(library.CallsOf("ActivateFonts"), 1);

    framework.whileDialogShows = [] {
        AllTrackedDocuments& documents = AllTrackedDocuments::GetSharedInstance();
        if (const auto open = documents.FindTrackedDocumentByIdentifier("ID"))
            documents.RemoveClosedDocument(*open, MarquellGlobals::GetSharedFontActivationTracker());
    };
    EXPECT_EQ(DocumentCommands::HandleCheckDocumentFonts(document, fonts), kNotCompleted);
    EXPECT_EQ(library.CallsOf("ActivateFonts"), 1) << "the host closed it behind the dialog";
}

TEST_F(DocumentCommandsTest, ADocumentThatIsNotOpenIsNamed) {
    for (const ErrorCode code : {DocumentCommands::HandleExportDocumentFonts(document),
                                 DocumentCommands::HandleCreateDocumentSet(document),
                                 DocumentCommands::HandleCheckDocumentFonts(document, "")})
        EXPECT_EQ(code, kNotCompleted);
    EXPECT_EQ(framework.shownBoxes, std::vector(3, MessageBox(199, 660)));
    EXPECT_EQ(framework.subjects, std::vector<std::string>(3, "/nowhere.ai"));
}

// Documents read by the process that is there for it.
#include "DocumentReader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "TemporaryFolder.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

using documents::DocumentReader;
using documents::ReadStatus;
using testing::HasSubstr;

namespace {

std::string DrawingWith(const std::string& family) {
    return "<svg><text font-family=\"" + family + "\">x</text></svg>";
}

}  // namespace

TEST(DocumentReader, ADocumentOfAnyPathIsReadAndTheNextOneAfterATrouble) {
    const TemporaryFolder folder;
    DocumentReader reader(DOCUMENT_READER_PROGRAM);
    const std::string good = folder.Write("Титул 字 🙂.svg", DrawingWith("Ünïcode 字\xFF"));
    EXPECT_EQ(reader.Read(good).status, ReadStatus::kUnreadable) << "it is no UTF-8";
    const std::string drawing = folder.Write("a.SVG", DrawingWith("Ünïcode 字"));
    EXPECT_EQ(reader.Read(drawing).fonts.at(0).family, "Ünïcode 字");
    EXPECT_THAT(reader.Read(folder / "missing.svg").problem, HasSubstr("cannot be opened"));
    EXPECT_EQ(reader.Read(folder.Write("letter.txt", "Dear reader")).status, ReadStatus::kUnknown);
    EXPECT_EQ(reader.Read(folder.Write("empty", "")).status, ReadStatus::kUnknown);
    const auto found = reader.Read(drawing);
    EXPECT_EQ(found.reader, "svg");
    EXPECT_EQ(found.fonts.at(0).where, "text");
}

TEST(DocumentReader, WithoutItsProgramItSaysSo) {
    const TemporaryFolder folder;
    const std::string drawing = folder.Write("a.svg", DrawingWith("A"));
    EXPECT_THROW(DocumentReader(folder / "no program").Read(drawing), documents::NoDocumentReader);
}

// PLUGINCORE_CORPUS names a folder of real documents and a file expected.json, which has all of their paths.
TEST(DocumentCorpus, EveryDocumentIsReadByItsFormatOrNotAtAll) {
    const std::string corpus = platform::EnvironmentVariable("PLUGINCORE_CORPUS");
    if (corpus.empty())
        GTEST_SKIP() << "PLUGINCORE_CORPUS is not set";
    DocumentReader reader(DOCUMENT_READER_PROGRAM);
    std::ifstream stream(platform::Utf8Path(corpus + "/expected.json"));
    const auto documents = nlohmann::json::parse(stream);
    for (const auto& document : documents.items()) {
        const std::string& file = document.key();
        const auto found = reader.Read(corpus + "/" + file);
        const bool isXml = file.ends_with(".aepx");
        EXPECT_EQ(found.reader == "aepx", isXml) << file;
        EXPECT_THAT(found.problem, testing::Not(HasSubstr("reading it"))) << file;  // it died
        for (const documents::DocumentFont& font : found.fonts)
            EXPECT_FALSE(font.postScriptName.empty() || font.where.empty()) << file;
    }
}

// Real documents: PLUGINCORE_CORPUS names a folder that holds them and a file expected.json,
// {"path below the folder": ["name", …]}.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <set>

#include "GBinaryDocumentFontExtractor.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

TEST(DocumentCorpus, EveryDocumentYieldsItsNames) {
    const std::string folder = platform::EnvironmentVariable("PLUGINCORE_CORPUS");
    std::ifstream stream(platform::Utf8Path(folder + "/expected.json"));
    const auto expected = nlohmann::json::parse(stream);
    for (const auto& [file, names] : expected.items()) {
        std::set<std::string> found;
        GBinaryDocumentFontExtractor extractor{GFileSystemSpec(folder + "/" + file)};
        EXPECT_EQ(extractor.ExtractFontNames(found), CoreErrorCodes::kSuccess) << file;
        EXPECT_EQ(found, names.get<std::set<std::string>>()) << file;
    }
    EXPECT_FALSE(expected.empty());
}

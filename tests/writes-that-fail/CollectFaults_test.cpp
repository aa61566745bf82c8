// Every write by which fonts are collected fails once, or kills the program: what bears a name is whole, and what
// was there stays.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "FaultRun.h"
#include "TestFiles.h"
#include "platform/Files.h"
#include "platform/Utf8Path.h"
#include "tests/support/TestWorld.h"

namespace pellwick::test {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

class CollectFaults : public testing::Test {
protected:
    CollectFaults() {
        mWorld.StartAgent();
        mSources = {mWorld.WriteFont("Sample-Bold"), mWorld.WriteFont("Sample-Italic")};
        for (const std::string& font : mSources)
            mWorld.RunForJson({"add", font});
    }

    ProgramResult Collect() const {
        return mFaults.Start({BuiltFile(HOST_PROGRAM), "collect", mDocument, "--to", mWorld.Path("to")})
            ->Finish();
    }
    std::string Copy(const std::string& source) const {
        return ContentOf(mWorld.Path("to/" + platform::NamePart(source)));
    }
    void ExpectWhole(const Fault& fault) const {
        for (const std::string& source : mSources)
            EXPECT_TRUE(Copy(source).empty() || Copy(source) == ContentOf(source)) << source;
        const std::string manifest = ContentOf(mWorld.Path("to/fonts.json"));
        EXPECT_TRUE(manifest.empty() || Json::accept(manifest));
        for (const std::string& file : mWorld.FilesBelow("to"))
            EXPECT_TRUE(fault.IsKill() || !file.ends_with(".part")) << file;
        EXPECT_EQ(ContentOf(mWorld.Path("to/mine.txt")), "mine");
    }

    TestWorld mWorld;
    std::vector<std::string> mSources;
    const std::string mDocument = mWorld.Write(
        "a.ai", "/FontName /ABCDEF+Sample-Bold /Flags 4 >>\n/FontName /ABCDEF+Sample-Italic /Flags 4 >>");
    FaultControl mFaults{mWorld.Path("plan"), mWorld.Path("to")};
};

TEST_F(CollectFaults, LeaveWholeFilesAndAreSaid) {
    mFaults.MeetEvery("collect", [&](const Fault& fault, int at) {
        fs::remove_all(platform::Utf8Path(mWorld.Path("to")));
        mWorld.Write("to/mine.txt", "mine");
        mFaults.Begin(fault, at);
        const ProgramResult result = Collect();
        mFaults.End();
        ExpectWhole(fault);
        if (mFaults.HasHappened() && !fault.IsKill()) {
            EXPECT_EQ(result.status, 1) << mFaults.Where() << result.errors;
            EXPECT_THAT(result.errors, HasSubstr("cannot be written")) << mFaults.Where();
        }
        EXPECT_EQ(Collect().status, 0);
        for (const std::string& source : mSources)
            EXPECT_TRUE(Copy(source) == ContentOf(source)) << source;
    });
}

}  // namespace
}  // namespace pellwick::test

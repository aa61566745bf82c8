// The plug-in menu and the preferences, with the real font manager and framework.

#include "HostWorld.h"
#include "platform/Environment.h"
#include "platform/System.h"

using testing::HasSubstr;

namespace {

class MenuTest : public HostWorldTest {
protected:
    int Set(const std::string& key, const std::string& value) const {
        return world.RunHost({"settings", key, value}).status;
    }
};

}  // namespace

TEST_F(MenuTest, TheMenuIsInTheUsersLanguageAndItsChoicesLast) {
    ASSERT_EQ(world.Pellwick("workgroup create Druck"), 0);
    platform::SetEnvironment("LC_ALL", "de_DE.UTF-8");
    const auto result = world.RunHost({"menu"});
    EXPECT_EQ(result.status, 0) << result.errors;
    for (const char* line :
         {"Bibliothek auswählen\n", "Schriften des Dokuments prüfen  (not available)\n", "Druck\n"})
        EXPECT_THAT(result.output, HasSubstr(line));
    EXPECT_EQ(world.RunHost({"menu", "Druck"}).status, 0);
    EXPECT_THAT(world.RunHost({"menu"}).output, HasSubstr("* Druck\n"));
    EXPECT_THAT(world.RunHost({"menu", "3"}).errors, HasSubstr("--document"));
    EXPECT_EQ(world.RunHost({"menu", "no such item"}).status, 1);
}

TEST_F(MenuTest, NothingWaitsBehindAWindowWhereThereIsNoTerminal) {
    platform::SetEnvironment("PLUGINCORE_PRESENTER", "");
    platform::SetEnvironment("DISPLAY", ":nowhere");
    EXPECT_EQ(world.RunHost({"menu", "About..."}).status, 0);
    const std::string trace = ContentOf(world.Path("trace"));
    EXPECT_THAT(trace, HasSubstr("Nobody to show the dialog About to"));
    EXPECT_THAT(trace, testing::Not(HasSubstr("A dialog was not answered")));
    if (!platform::kIsLinux)
        return;  // no variable names the display there
    platform::SetEnvironment("PLUGINCORE_PRESENTER", "native");
    EXPECT_EQ(world.RunHost({"menu", "About..."}).status, 0);
    EXPECT_THAT(ContentOf(world.Path("trace")), HasSubstr("cannot be opened"));
}

TEST_F(MenuTest, PreferencesLastAndAreSharedByHostsThatRunAtOnce) {
    ScriptedHost one, other;
    one.Start();
    other.Start();
    one.SetPreference("RMF4", 4);
    other.SetPreference("RMF5", 5);
    const json seen = json::parse(world.RunHost({"--json", "settings"}).output);
    EXPECT_EQ(seen["RMF4"].get<std::string>() + seen["RMF5"].get<std::string>(), "45");
    EXPECT_THAT(world.RunHost({"settings", "NoSuchKey"}).errors, HasSubstr("NoSuchKey"));
    EXPECT_EQ(Set("RMF5", "many"), 1);

    EXPECT_EQ(Set("EnablePlugin", "0"), 0);
    const auto result = world.RunHost({"open", world.WriteDocument("a.ai", {"Sample-Bold"}), "--close"});
    EXPECT_EQ(result.status, 5);
    EXPECT_THAT(result.errors, HasSubstr("settings EnablePlugin 1"));
    EXPECT_EQ(world.RunHost({"menu"}).status, 0) << "the way back to the preferences is open";
}

// What the system says of the time, of its user and of libraries.
#include <gmock/gmock.h>

#include <ctime>

#include "ScopedVariable.h"
#include "TestProcess.h"
#include "platform/Clock.h"
#include "platform/DynamicLibrary.h"
#include "platform/Environment.h"
#include "platform/Folders.h"
#include "platform/System.h"

TEST(Clock, GoesOn) {
    auto& clock = platform::SystemDefault<platform::Clock>();
    const uint32_t first = clock.TickCount();
    EXPECT_TRUE(Eventually([&] { return clock.TickCount() != first; }));
    EXPECT_NEAR(static_cast<double>(clock.Now()), static_cast<double>(std::time(nullptr)), 2);
}

TEST(UserLanguage, IsTheFirstThatTheEnvironmentNamesOnLinux) {
    if (!platform::kIsLinux)
        GTEST_SKIP() << "the user chooses it elsewhere";
    for (const auto& [locale, language] :
         {std::pair{"de", "de"}, {"pt_BR.UTF-8", "pt"}, {"C", "en"}, {"POSIX", "en"}, {"", "fr"}}) {
        const ScopedVariable all("LC_ALL", locale), messages("LC_MESSAGES", ""), lang("LANG", "fr_FR");
        EXPECT_EQ(platform::UserLanguage(), language) << locale;
    }
}

TEST(DynamicLibraries, AreFoundByAnAddressAndSayWhyOneCannotBeLoaded) {
    static const char here = 0;
    auto& libraries = platform::Current<platform::DynamicLibraries>();
    EXPECT_NE(libraries.ModuleAt(&here), nullptr);
    platform::SystemError error;
    EXPECT_EQ(libraries.ModuleAt(&error), nullptr) << "the stack is of no module";
    EXPECT_EQ(libraries.LoadFromPath(platform::FullPath("/no/such.library"), error), nullptr);
    EXPECT_THAT(libraries.LastLoadFailure(), testing::HasSubstr("such.library"));
}

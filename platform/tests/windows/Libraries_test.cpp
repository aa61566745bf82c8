#include <gtest/gtest.h>
#include <windows.h>

#include "platform/DynamicLibrary.h"

TEST(Libraries, AModuleThatIsKeptOutlivesItsLoaders) {
    constexpr wchar_t kLibrary[] = L"msimg32.dll";
    HMODULE library = LoadLibraryW(kLibrary);
    ASSERT_NE(library, nullptr);
    FreeLibrary(library);
    ASSERT_EQ(GetModuleHandleW(kLibrary), nullptr) << "something else has it loaded";
    library = LoadLibraryW(kLibrary);
    platform::KeepModuleLoaded(library);
    FreeLibrary(library);
    EXPECT_EQ(GetModuleHandleW(kLibrary), library);
}

// The client library, bound as a plug-in binds it.
#pragma once

#include <string>
#include <vector>

#include "CoreFoundation++/CFRef.h"
#include "ErrorCodes.h"
#include "TarnwickPluginInterface.h"

namespace pellwick::test {

using IDs = std::vector<int64_t>;

/// Every function of the library, by its name.
struct TestLibrary {
#define TEST_LIBRARY_MEMBER(symbol, parameters) PluginFunction_##symbol symbol = nullptr;
    TARNWICK_PLUGIN_FUNCTIONS(TEST_LIBRARY_MEMBER)
#undef TEST_LIBRARY_MEMBER

    /// Loads the library; it stays loaded. Throws when it lacks one.
    TestLibrary();

    PluginFacadeRef Facade() const;
    /// Activates fonts for a document by their PostScript names; the code, and the records of those matched.
    ErrorCode Activate(const std::string& document, const std::vector<std::string>& names,
                       CFRef<CFMutableArrayRef>& matched) const;
    /// The same, where success is expected: the IDs of those matched.
    IDs Activate(const std::string& document, const std::vector<std::string>& names) const;
    ErrorCode Deactivate(const IDs& fontIDs) const;
    int32_t StateOf(int64_t fontID) const;
};

CFRef<CFMutableArrayRef> NamesArray(const std::vector<std::string>& postScriptNames);
CFRef<CFMutableArrayRef> IDsArray(const IDs& fontIDs);

}  // namespace pellwick::test

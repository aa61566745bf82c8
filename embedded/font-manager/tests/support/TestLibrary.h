// The client library, bound as a plug-in binds it.
#pragma once

#include <stdexcept>

#include "ErrorCodes.h"
#include "Records.h"
#include "TarnwickPluginInterface.h"
#include "TestFiles.h"
#include "platform/DynamicLibrary.h"
#include "platform/Folders.h"

namespace pellwick::test {

using IDs = std::vector<int64_t>;

inline CFRef<CFMutableArrayRef> NamesArray(const std::vector<std::string>& postScriptNames) {
    auto array = cf::MutableArray();
    for (const std::string& name : postScriptNames)
        cf::Append(array, Record(kGS_PostScriptNameKey, name));
    return array;
}

struct TestLibrary {
#define TEST_LIBRARY_MEMBER(symbol, parameters) PluginFunction_##symbol symbol = nullptr;
    TARNWICK_PLUGIN_FUNCTIONS(TEST_LIBRARY_MEMBER)
#undef TEST_LIBRARY_MEMBER

    /// Loads the library; it stays loaded. Throws when it lacks a function.
    TestLibrary() {
        auto& libraries = platform::Current<platform::DynamicLibraries>();
        platform::SystemError error;
        const auto library = libraries.LoadFromPath(BuiltFile(TARNWICK_LIBRARY), error);
        if (library == nullptr)
            throw std::runtime_error(libraries.LastLoadFailure());
#define TEST_LIBRARY_BIND(symbol, parameters)                                                   \
    symbol = reinterpret_cast<PluginFunction_##symbol>(libraries.FindSymbol(library, #symbol)); \
    if (symbol == nullptr)                                                                      \
        throw std::runtime_error("the library lacks " #symbol);
        TARNWICK_PLUGIN_FUNCTIONS(TEST_LIBRARY_BIND)
#undef TEST_LIBRARY_BIND
    }

    PluginFacadeRef Facade() const {
        PluginFacadeRef facade = nullptr;
        GetPluginFacadeInstance(&facade);
        return facade;
    }
    /// Activates fonts for a document by their PostScript names; the code, and the records of those matched.
    ErrorCode Activate(const std::string& document, const std::vector<std::string>& names,
                       CFRef<CFMutableArrayRef>& matched) const {
        matched = cf::MutableArray();
        return ActivateDocumentFontsByPath(Facade(), cf::String(document).get(), NamesArray(names).get(),
                                           matched.get(), nullptr, nullptr);
    }
    /// The same, where success is expected: the IDs of those matched.
    IDs Activate(const std::string& document, const std::vector<std::string>& names) const {
        CFRef<CFMutableArrayRef> matched;
        if (const ErrorCode code = Activate(document, names, matched); code != CoreErrorCodes::kSuccess)
            throw std::runtime_error("activation: " + ErrorCodeToName(code));
        IDs ids;
        for (const auto font : cf::Elements<CFDictionaryRef>(matched.get()))
            ids.push_back(*cf::GetInt64(font, kGS_DatabaseIDKey));
        return ids;
    }
    ErrorCode Deactivate(const IDs& fontIDs) const {
        return DeactivateFonts(Facade(), cf::NumberArray(fontIDs).get(), 0, nullptr);
    }
    int32_t StateOf(int64_t fontID) const {
        int32_t state = -100;
        GetFontIsActivated(Facade(), static_cast<uint32_t>(fontID), &state);
        return state;
    }
};

}  // namespace pellwick::test

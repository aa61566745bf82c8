#include "FakeInterfaceLibrary.h"

#include <CoreFoundation++/CFRef.h>

#include <algorithm>
#include <tuple>

namespace {

FakeInterfaceLibrary* current = nullptr;

/// Notes the call and answers with the next code of its script.
ErrorCode Answer(const char* symbol) {
    current->calls.emplace_back(symbol);
    auto& codes = current->codes[symbol];
    if (codes.empty())
        return CoreErrorCodes::kSuccess;
    const ErrorCode code = codes.front();
    codes.pop_front();
    return code;
}

void AppendFonts(CFMutableArrayRef fonts) {
    for (const auto& [databaseID, name] : current->fonts) {
        const CFRef<CFMutableDictionaryRef> font = cf::MutableDictionary();
        cf::Set(font, kGS_DatabaseIDKey, databaseID);
        cf::Set(font, kGS_PostScriptNameKey, name);
        cf::Set(font, kGS_ActivationStateKey, current->activationStateBefore);
        if (fonts != nullptr)
            cf::Append(fonts, font);
    }
}

/// What a successful call does, by symbol; nothing for most.
template <class... Arguments>
void Perform(const char* symbol, Arguments... arguments) {
    const std::string name = symbol;
    const auto values = std::make_tuple(arguments...);
    if constexpr (sizeof...(Arguments) == 2) {
        using Second = std::tuple_element_t<1, std::tuple<Arguments...>>;
        if constexpr (std::is_same_v<Second, bool*>) {
            if (name == "GetIsLoggedIn")
                *std::get<1>(values) = current->isLoggedIn;
            if (name == "GetRunningStandalone")
                *std::get<1>(values) = current->isStandalone;
            if (name == "GetIsCoreAgentProcessRunning")
                *std::get<1>(values) = current->isAgentRunning;
        }
        if constexpr (std::is_same_v<Second, const char*>) {
            if (name == "Log")
                current->log += std::get<1>(values);
        }
    }
    if constexpr (sizeof...(Arguments) == 6) {  // ActivateDocumentFontsByPath
        AppendFonts(std::get<3>(values));
        AppendFonts(std::get<5>(values));
    }
    if constexpr (sizeof...(Arguments) == 5) {
        using Last = std::tuple_element_t<4, std::tuple<Arguments...>>;
        if constexpr (std::is_same_v<Last, CFMutableArrayRef>) {
            if (name == "ActivateFonts")
                AppendFonts(std::get<4>(values));
        }
    }
    if constexpr (sizeof...(Arguments) == 3) {
        using Last = std::tuple_element_t<2, std::tuple<Arguments...>>;
        if constexpr (std::is_same_v<Last, CFMutableDictionaryRef>) {
            for (const auto& [databaseID, isActive] : current->activationStates)
                CFDictionarySetValue(std::get<2>(values), cf::Number(databaseID).get(), cf::Bool(isActive));
        }
    }
}

template <class Function>
struct FakeOf;

template <class... Arguments>
struct FakeOf<uint32_t (*)(Arguments...)> {
    /// One function per symbol: the symbol is a template argument by its index in the table.
    template <int kIndex>
    static uint32_t Call(Arguments... arguments);
};

constexpr const char* kSymbols[] = {
#define NAME_OF(symbol, parameters) #symbol,
    TARNWICK_PLUGIN_FUNCTIONS(NAME_OF)
#undef NAME_OF
};

template <class... Arguments>
template <int kIndex>
uint32_t FakeOf<uint32_t (*)(Arguments...)>::Call(Arguments... arguments) {
    const ErrorCode code = Answer(kSymbols[kIndex]);
    if (code == CoreErrorCodes::kSuccess)
        Perform(kSymbols[kIndex], arguments...);
    return code;
}

enum SymbolIndex {
#define INDEX_OF(symbol, parameters) kIndexOf##symbol,
    TARNWICK_PLUGIN_FUNCTIONS(INDEX_OF)
#undef INDEX_OF
};

}  // namespace

FakeInterfaceLibrary::FakeInterfaceLibrary() {
    current = this;
}
FakeInterfaceLibrary::~FakeInterfaceLibrary() {
    current = nullptr;
}

std::map<std::string, void*> FakeInterfaceLibrary::Symbols() {
    std::map<std::string, void*> symbols;
#define ADD_SYMBOL(symbol, parameters)          \
    symbols[#symbol] = reinterpret_cast<void*>( \
        static_cast<PluginFunction_##symbol>(FakeOf<PluginFunction_##symbol>::Call<kIndexOf##symbol>));
    TARNWICK_PLUGIN_FUNCTIONS(ADD_SYMBOL)
#undef ADD_SYMBOL
    return symbols;
}

int FakeInterfaceLibrary::CallsOf(const std::string& symbol) const {
    return static_cast<int>(std::count(calls.begin(), calls.end(), symbol));
}

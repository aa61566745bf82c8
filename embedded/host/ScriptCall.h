// One call of a script: how each export is called with arguments by their names.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "CoreLibrary.h"
#include "HostSession.h"
#include "PanelEventService.h"

/// The arguments of one call. What is missing or null is a null pointer to the core.
class Arguments {
public:
    explicit Arguments(nlohmann::json values) : mValues(std::move(values)) {}

    /// A text argument; JSON that is not a string is passed as its text.
    const char* Text(const char* name) {
        const auto found = mValues.find(name);
        if (found == mValues.end() || found->is_null())
            return nullptr;
        std::string& text = mTexts[name];
        text = found->is_string() ? found->get<std::string>() : found->dump();
        return text.c_str();
    }
    bool Flag(const char* name) const { return mValues.value(name, false); }
    uint32_t Number(const char* name, uint32_t otherwise) const { return mValues.value(name, otherwise); }
    bool Has(const char* name) const { return mValues.contains(name) && !mValues[name].is_null(); }

private:
    nlohmann::json mValues;
    std::map<std::string, std::string> mTexts;
};

struct Call {
    const CoreLibrary& core;
    const HostOptions& host;
    PanelEventService& panels;
    Arguments arguments;
    nlohmann::json out = nlohmann::json::object();  ///< every output by its name

    const char* Text(const char* name) { return arguments.Text(name); }
};

/// Makes the call, fills in `out`, and answers with the export's code, if it has one.
using Caller = std::optional<uint32_t> (*)(Call& call);

/// Null when no export has the name.
Caller FindCaller(std::string_view name);

// The preferences of one plug-in in one host application.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>

#include "preferences/PreferenceFile.h"

/// Readers are tolerant: a truth value reads as the number 1 or 0, a number other than 0 as true; what is
/// missing, or has no meaning in the type asked for, reads as 0, false or empty. Any thread.
class PreferenceStore {
public:
    /// `folder` as for PreferenceFile. An empty identifier stands for one that is not known.
    PreferenceStore(const std::string& folder, const std::string& bundleIdentifier,
                    const std::string& hostApp);

    bool GetBool(const std::string& key);
    int64_t GetInt(const std::string& key);
    std::string GetString(const std::string& key);
    /// False when the value is not in the file afterwards.
    bool Set(const std::string& key, const nlohmann::json& value);
    /// The same for each member of `values`, an object, in one step.
    bool SetAll(const nlohmann::json& values);

    bool AreDefaultsRegistered();
    /// Stores each member of `defaults`, an object, whose key has no value yet, and remembers that it was
    /// done.
    bool RegisterDefaults(const nlohmann::json& defaults);
    bool IsUsable() { return mFile.IsUsable(); }

private:
    nlohmann::json Get(const std::string& key);
    nlohmann::json& Section(nlohmann::json& root) const;

    PreferenceFile mFile;
    const std::string mBundleIdentifier;
    const std::string mHostApp;
};

#include "preferences/PreferenceStore.h"

#include <limits>

#include "StringConversion.h"

namespace {

constexpr char kUnknownIdentifier[] = "Unknown";
// Stands beside the preferences themselves, so that it is lost and kept together with them.
constexpr char kDefaultsRegisteredKey[] = "DefaultsRegistered";

// Only UTF-8 can stand in the file.
std::string MemberName(const std::string& identifier) {
    return identifier.empty() ? kUnknownIdentifier : ReplaceInvalidUtf8(identifier);
}

const nlohmann::json* Member(const nlohmann::json* object, const std::string& name) {
    if (object == nullptr || !object->is_object())
        return nullptr;
    const auto found = object->find(name);
    return found != object->end() ? &*found : nullptr;
}

nlohmann::json& ObjectMember(nlohmann::json& object, const std::string& name) {
    nlohmann::json& member = object[name];
    if (!member.is_object())
        member = nlohmann::json::object();
    return member;
}

int64_t WholeNumber(double value) {
    constexpr double kLimit = 9223372036854775808.0;  // 2^63
    return value >= -kLimit && value < kLimit ? static_cast<int64_t>(value) : 0;
}

int64_t AsInteger(const nlohmann::json& value) {
    if (value.is_boolean())
        return value.get<bool>() ? 1 : 0;
    if (value.is_number_unsigned() && value.get<uint64_t>() > uint64_t{std::numeric_limits<int64_t>::max()})
        return 0;
    if (value.is_number_float())
        return WholeNumber(value.get<double>());
    return value.is_number() ? value.get<int64_t>() : 0;
}

}  // namespace

PreferenceStore::PreferenceStore(const std::string& folder, const std::string& bundleIdentifier,
                                 const std::string& hostApp)
    : mFile(folder), mBundleIdentifier(MemberName(bundleIdentifier)), mHostApp(MemberName(hostApp)) {}

bool PreferenceStore::GetBool(const std::string& key) {
    const nlohmann::json value = Get(key);
    return value.is_number_float() ? value.get<double>() != 0 : AsInteger(value) != 0;
}

int64_t PreferenceStore::GetInt(const std::string& key) {
    return AsInteger(Get(key));
}

std::string PreferenceStore::GetString(const std::string& key) {
    const nlohmann::json value = Get(key);
    return value.is_string() ? value.get<std::string>() : std::string();
}

bool PreferenceStore::Set(const std::string& key, const nlohmann::json& value) {
    return SetAll({{key, value}});
}

bool PreferenceStore::SetAll(const nlohmann::json& values) {
    return values.empty() || mFile.Change([&](nlohmann::json& root) {
        nlohmann::json& section = Section(root);
        for (const auto& [key, value] : values.items())
            section[MemberName(key)] = value;
    });
}

bool PreferenceStore::AreDefaultsRegistered() {
    return GetBool(kDefaultsRegisteredKey);
}

bool PreferenceStore::RegisterDefaults(const nlohmann::json& defaults) {
    return mFile.Change([&](nlohmann::json& root) {
        nlohmann::json& section = Section(root);
        for (const auto& [key, value] : defaults.items())
            section.emplace(MemberName(key), value);
        section[kDefaultsRegisteredKey] = true;
    });
}

nlohmann::json PreferenceStore::Get(const std::string& key) {
    const PreferenceFile::Content content = mFile.Read();
    const nlohmann::json* section = Member(Member(content.get(), mBundleIdentifier), mHostApp);
    const nlohmann::json* value = Member(section, MemberName(key));
    return value != nullptr ? *value : nlohmann::json();
}

nlohmann::json& PreferenceStore::Section(nlohmann::json& root) const {
    return ObjectMember(ObjectMember(root, mBundleIdentifier), mHostApp);
}

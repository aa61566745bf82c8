#include "ErrorCodes.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>

namespace {

struct Entry {
    ErrorCode code;
    const char* name;
};

constexpr Entry kEntries[] = {
#define NAMESPACE(identifier, name)
#define MEMBER(space, name, number) {error_codes::space::name, #space "::" #name},
#define ODD_MEMBER(space, name, code) {error_codes::space::name, #space "::" #name},
#define END_NAMESPACE(name)
#include "ErrorCodeTable.inc"
#undef NAMESPACE
#undef MEMBER
#undef ODD_MEMBER
#undef END_NAMESPACE
};

using NamesByCode = std::map<ErrorCode, std::string>;
using CodesByName = std::map<std::string, ErrorCode>;

void Insert(NamesByCode& names, const Entry& entry) {
    names.emplace(entry.code, entry.name);
}
void Insert(CodesByName& codes, const Entry& entry) {
    codes.emplace(entry.name, entry.code);
}

std::mutex& TableBuildingLock() {
    static std::mutex lock;
    return lock;
}

/// The table, built on first use and published whole; lives to process end. Reading it takes no lock.
template <class Table>
const Table& PublishedTable() {
    static std::atomic<const Table*> published{nullptr};
    if (const Table* table = published.load(std::memory_order_acquire))
        return *table;
    const std::lock_guard guard(TableBuildingLock());
    if (const Table* table = published.load(std::memory_order_acquire))
        return *table;
    auto table = std::make_unique<Table>();
    for (const Entry& entry : kEntries)
        Insert(*table, entry);
    published.store(table.get(), std::memory_order_release);
    return *table.release();
}

}  // namespace

std::string ErrorCodeToName(ErrorCode code) {
    const NamesByCode& names = PublishedTable<NamesByCode>();
    const auto found = names.find(code);
    return found != names.end() ? found->second : "Unknown error code";
}

ErrorCode ErrorNameToCode(const std::string& name) {
    const CodesByName& codes = PublishedTable<CodesByName>();
    const auto found = codes.find(name);
    return found != codes.end() ? found->second : CoreErrorCodes::kUnknownError;
}

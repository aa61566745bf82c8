#include "platform/VersionResource.h"

#include <elf.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

#include "platform/DynamicLibrary.h"
#include "platform/Files.h"

namespace platform {
namespace {

constexpr char kSectionName[] = ".plugincore.version";
// Version pairs are a few hundred bytes, section names a few thousand; whatever claims more is not ours.
constexpr uint64_t kSectionSizeLimit = 1 << 20;
constexpr size_t kSectionCountLimit = 4096;

bool ReadExactly(ReadOnlyFile& file, uint64_t offset, void* buffer, size_t size) {
    size_t bytesRead = 0;
    return !file.ReadAt(offset, buffer, size, bytesRead) && bytesRead == size;
}

bool ReadSection(ReadOnlyFile& file, const Elf64_Shdr& header, std::string& content) {
    if (header.sh_type == SHT_NOBITS || header.sh_size > kSectionSizeLimit)
        return false;
    content.resize(static_cast<size_t>(header.sh_size));
    return ReadExactly(file, header.sh_offset, content.data(), content.size());
}

bool ReadSectionHeaders(ReadOnlyFile& file, std::vector<Elf64_Shdr>& sections, size_t& namesIndex) {
    Elf64_Ehdr header{};
    if (!ReadExactly(file, 0, &header, sizeof header) || std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 ||
        header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_ident[EI_DATA] != ELFDATA2LSB)
        return false;
    if (header.e_shentsize != sizeof(Elf64_Shdr) || header.e_shnum == 0 ||
        header.e_shnum > kSectionCountLimit || header.e_shstrndx >= header.e_shnum)
        return false;
    sections.resize(header.e_shnum);
    namesIndex = header.e_shstrndx;
    return ReadExactly(file, header.e_shoff, sections.data(), sections.size() * sizeof(Elf64_Shdr));
}

/// The bytes of the version section; false when the file has none.
bool ReadVersionSection(ReadOnlyFile& file, std::string& content) {
    std::vector<Elf64_Shdr> sections;
    size_t namesIndex = 0;
    std::string names;
    if (!ReadSectionHeaders(file, sections, namesIndex) || !ReadSection(file, sections[namesIndex], names))
        return false;
    for (const Elf64_Shdr& section : sections) {
        if (section.sh_name < names.size() && std::strcmp(names.c_str() + section.sh_name, kSectionName) == 0)
            return ReadSection(file, section, content);
    }
    return false;
}

std::optional<std::string> FindValue(std::string_view pairs, std::string_view key) {
    while (!pairs.empty()) {
        const std::string_view pair = pairs.substr(0, pairs.find('\0'));
        if (pair.size() > key.size() && pair.substr(0, key.size()) == key && pair[key.size()] == '=')
            return std::string(pair.substr(key.size() + 1));
        pairs.remove_prefix(std::min(pairs.size(), pair.size() + 1));
    }
    return std::nullopt;
}

class LinuxVersionResources : public VersionResources {
public:
    std::optional<std::string> FromFile(const std::string& path, const char* key,
                                        SystemError& error) override {
        const auto pairs = ReadPairs(path, error);
        return pairs ? FindValue(*pairs, key) : std::nullopt;
    }

    // What is mapped into memory does not tell where the section is; its file does.
    std::optional<std::string> FromModuleAt(const void* address, const char* key, SystemError& error,
                                            size_t* resourceSize) override {
        const auto pairs = ReadPairs(Current<DynamicLibraries>().PathOfModuleAt(address), error);
        if (resourceSize != nullptr)
            *resourceSize = pairs ? pairs->size() : 0;
        return pairs ? FindValue(*pairs, key) : std::nullopt;
    }

private:
    static std::optional<std::string> ReadPairs(const std::string& path, SystemError& error) {
        ReadOnlyFile file;
        error = file.Open(path);
        if (error)
            return std::nullopt;
        std::string pairs;
        if (ReadVersionSection(file, pairs))
            return pairs;
        error.code = ENODATA;
        return std::nullopt;
    }
};

}  // namespace

template <>
VersionResources& SystemDefault<VersionResources>() {
    static LinuxVersionResources resources;
    return resources;
}

}  // namespace platform

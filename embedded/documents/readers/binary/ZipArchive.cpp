#include "ZipArchive.h"

#include <algorithm>

#include "ReadProblem.h"

namespace documents {
namespace {

[[noreturn]] void Fail(const std::string& problem) {
    throw ReadProblem("is damaged: " + problem);
}

struct CloseEntry {
    void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};

}  // namespace

ZipArchive::ZipArchive(std::string_view content) {
    zip_error_t error;
    zip_error_init(&error);
    zip_source_t* source = zip_source_buffer_create(content.data(), content.size(), 0, &error);
    if (source != nullptr)
        mArchive.reset(zip_open_from_source(source, ZIP_RDONLY, &error));
    const std::string problem = mArchive ? "" : zip_error_strerror(&error);
    zip_error_fini(&error);
    if (!mArchive) {
        zip_source_free(source);
        Fail(problem);
    }
    if (zip_get_num_entries(mArchive.get(), 0) > kMaxArchiveEntries)
        throw ReadProblem("has more than " + std::to_string(kMaxArchiveEntries) + " parts");
}

std::vector<std::string> ZipArchive::Names() const {
    std::vector<std::string> names;
    const zip_int64_t count = zip_get_num_entries(mArchive.get(), 0);
    for (zip_int64_t index = 0; index < count; ++index) {
        if (const char* name = zip_get_name(mArchive.get(), static_cast<zip_uint64_t>(index), 0))
            names.emplace_back(name);
    }
    return names;
}

bool ZipArchive::Has(const std::string& name) const {
    return zip_name_locate(mArchive.get(), name.c_str(), 0) >= 0;
}

void ZipArchive::ReadXml(const std::string& name, XmlListener& listener) {
    const std::unique_ptr<zip_file_t, CloseEntry> entry(zip_fopen(mArchive.get(), name.c_str(), 0));
    if (!entry)
        Fail(name + ": " + zip_strerror(mArchive.get()));
    XmlParser parser(listener);
    std::vector<char> piece(size_t{64} << 10);
    uint64_t left = std::min(kMaxUnpackedEntry, mLeft);
    while (const zip_int64_t count = zip_fread(entry.get(), piece.data(), piece.size())) {
        if (count < 0)
            Fail(name + ": " + zip_error_strerror(zip_file_get_error(entry.get())));
        if (static_cast<uint64_t>(count) > left)
            throw ReadProblem("unpacks to more than can be read");
        left -= static_cast<uint64_t>(count);
        mLeft -= static_cast<uint64_t>(count);
        parser.Read({piece.data(), static_cast<size_t>(count)});
    }
    parser.Finish();
}

}  // namespace documents

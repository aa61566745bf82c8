// An archive in memory, unpacked piece by piece and within bounds.
#pragma once

#include <zip.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "DocumentLimits.h"
#include "XmlParser.h"

namespace documents {

class ZipArchive {
public:
    /// Takes what is outside for granted until it is read. Throws ReadProblem.
    explicit ZipArchive(std::string_view content);

    /// The names of its entries, as they stand in it.
    std::vector<std::string> Names() const;
    bool Has(const std::string& name) const;
    /// Reads an entry that is XML. Throws ReadProblem where it is missing or damaged, unpacks to too
    /// much, or where all that was read comes to too much.
    void ReadXml(const std::string& name, XmlListener& listener);

private:
    struct Discard {
        void operator()(zip_t* archive) const { zip_discard(archive); }
    };

    std::unique_ptr<zip_t, Discard> mArchive;
    uint64_t mLeft = kMaxUnpackedTotal;
};

}  // namespace documents

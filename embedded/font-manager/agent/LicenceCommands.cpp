// What fonts say of who may do what with them.
#include <algorithm>
#include <chrono>
#include <nlohmann/json.hpp>

#include "agent/FontRecord.h"
#include "agent/Requests.h"
#include "common/FontManagerLimits.h"
#include "common/Protocol.h"

namespace pellwick {
namespace {

/// The fonts of one request, in its order. Loop and lane have it in turn.
struct LicenceReading {
    std::vector<Font> fonts;
    Json records = Json::array();  ///< of the first of them
};

Json RecordOf(const CommandContext& context, const Font& font) {
    Json record = FontRecord(context.manager, font);
    record[kGS_PathKey] = context.manager.vault.PathOf(font.file);  // others may end what makes it active
    return record;
}

void Read(const Font& font, Json& record, FontWorker& worker) {
    platform::ReadOnlyFile file;
    if (file.Open(StringMember(record, kGS_PathKey)))
        return;
    const FontLicence licence = worker.ReadLicence(file, font);
    if (licence.embedding)
        record[member::kEmbedding] = *licence.embedding;
    record[member::kLicence] = licence.text;
    record[member::kLicenceURL] = licence.url;
}

/// As many as there is time for; one at least.
size_t ReadSome(LicenceReading& reading, FontWorker& worker) {
    const auto deadline = std::chrono::steady_clock::now() + kLicenceLimit;
    size_t count = 0;
    do {
        Read(reading.fonts[count], reading.records[count], worker);
    } while (++count < reading.fonts.size() && std::chrono::steady_clock::now() < deadline);
    return count;
}

}  // namespace

/// Records of the fonts that are known, in the order of the request, with where their files are kept. The IDs
/// of those that an answer has no room or no time for come back for another request.
Json commands::GetLicences(CommandContext& context, const Json& arguments) {
    const std::vector<uint32_t> ids = FontIDsOf(ArrayMember(arguments, member::kFonts));
    const auto end = ids.begin() + static_cast<std::ptrdiff_t>(std::min(ids.size(), kLicenceBatchSize));
    const auto reading = std::make_shared<LicenceReading>();
    for (auto id = ids.begin(); id != end; ++id) {
        if (auto font = context.manager.fonts.Find(*id)) {
            reading->records.push_back(RecordOf(context, *font));
            reading->fonts.push_back(std::move(*font));
        }
    }
    const std::vector<uint32_t> rest(end, ids.end());
    if (reading->fonts.empty())
        return {{member::kFonts, Json::array()}, {member::kLeft, rest}};
    return context.Defer(Deferral::LaneName::kPreviews, [=](FontWorker& worker) {
        const size_t count = ReadSome(*reading, worker);
        return [=](CommandContext&) -> Json {
            std::vector<uint32_t> left;
            for (size_t index = count; index < reading->fonts.size(); ++index)
                left.push_back(reading->fonts[index].id);
            left.insert(left.end(), rest.begin(), rest.end());
            reading->records.erase(reading->records.begin() + static_cast<std::ptrdiff_t>(count),
                                   reading->records.end());
            return {{member::kFonts, reading->records}, {member::kLeft, left}};
        };
    });
}

}  // namespace pellwick

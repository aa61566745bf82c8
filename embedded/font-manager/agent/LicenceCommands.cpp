// What fonts say of who may do what with them.
#include <chrono>
#include <memory>
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
    Json records = Json::array();  ///< of each
    std::vector<uint32_t> left;    ///< IDs of those that there was no room or no time for
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
void ReadSome(LicenceReading& reading, FontWorker& worker) {
    const auto deadline = std::chrono::steady_clock::now() + kLicenceLimit;
    size_t count = 0;
    do {
        Read(reading.fonts[count], reading.records[count], worker);
    } while (++count < reading.fonts.size() && !worker.StopFlag() &&
             std::chrono::steady_clock::now() < deadline);
    std::vector<uint32_t> unread;
    for (size_t index = count; index < reading.fonts.size(); ++index)
        unread.push_back(reading.fonts[index].id);
    reading.left.insert(reading.left.begin(), unread.begin(), unread.end());
    reading.records.get_ref<Json::array_t&>().resize(count);
}

/// The first of the fonts, as far as they are known; the others are left.
std::shared_ptr<LicenceReading> BeginReading(const CommandContext& context,
                                             const std::vector<uint32_t>& ids) {
    auto reading = std::make_shared<LicenceReading>();
    for (const uint32_t id : ids) {
        if (reading->fonts.size() == kLicenceBatchSize) {
            reading->left.push_back(id);
        } else if (auto font = context.manager.fonts.Find(id)) {
            reading->records.push_back(RecordOf(context, *font));
            reading->fonts.push_back(std::move(*font));
        }
    }
    return reading;
}

}  // namespace

/// Records of the fonts that are known, in the order of the request, with where their files are kept. The IDs
/// of those that are left come back for another request.
Json commands::GetLicences(CommandContext& context, const Json& arguments) {
    const auto reading = BeginReading(context, FontIDsOf(ArrayMember(arguments, member::kFonts)));
    if (reading->fonts.empty())
        return {{member::kFonts, Json::array()}, {member::kLeft, Json::array()}};
    return context.Defer(Deferral::LaneName::kPreviews, [reading](FontWorker& worker) {
        ReadSome(*reading, worker);
        return [reading](CommandContext&) -> Json {
            return {{member::kFonts, reading->records}, {member::kLeft, reading->left}};
        };
    });
}

}  // namespace pellwick

#include "PanelRecorder.h"

#include <nlohmann/json.hpp>

#include "platform/Files.h"
#include "platform/Utf8Path.h"

namespace {

using Json = nlohmann::ordered_json;

constexpr uint64_t kLargestRecording = uint64_t{64} << 20;

void WriteLine(std::ofstream& file, const Json& line) {
    file << line.dump(-1, ' ', false, Json::error_handler_t::replace) << std::endl;
}

}  // namespace

bool PanelRecorder::Open(const std::string& path) {
    mFile.open(platform::Utf8Path(path), std::ios::binary | std::ios::trunc);
    mStart = std::chrono::steady_clock::now();
    return mFile.is_open();
}

void PanelRecorder::Note(To to, const std::string& message) {
    if (!mFile.is_open())
        return;
    Json parsed = Json::parse(message, nullptr, false);
    if (parsed.is_discarded())
        parsed = message;
    const auto time = std::chrono::steady_clock::now() - mStart;
    WriteLine(mFile, {{"to", to == To::kPanel ? "panel" : "core"},
                      {"ms", std::chrono::duration_cast<std::chrono::milliseconds>(time).count()},
                      {"message", std::move(parsed)}});
}

void PanelRecorder::NoteFile(const std::string& url, const std::string& path) {
    std::string text;
    if (mFile.is_open() && !platform::ReadWholeFile(path, text, kLargestRecording))
        WriteLine(mFile, {{"file", url}, {"text", std::move(text)}});
}

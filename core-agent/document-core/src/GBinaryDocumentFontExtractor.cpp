#include "GBinaryDocumentFontExtractor.h"

#include <algorithm>
#include <array>

#include "FailureReport.h"
#include "MarkerSearch.h"
#include "StringConversion.h"
#include "TraceLog.h"

namespace {

constexpr char kLogCategory[] = "BinaryDocumentFontExtractor";

// Above this size, searching a file of unknown kind three times takes longer than anyone waits.
constexpr uint64_t kUnknownKindSizeLimit = 0x40000000;

constexpr std::string_view kByteOrderMark = "\xFE\xFF";
constexpr char kInvisibleFont[] = "AdobeInvisFont";
constexpr char kAfterEffectsDefaultFont[] = "Myriad-Roman";
constexpr char kIllustratorDefaultFont[] = "MyriadPro-Regular";

enum class DocumentKind { kUnknown, kIllustrator, kPhotoshop, kAfterEffects, kEps };

DocumentKind KindOfExtension(const std::string& extension) {
    struct Entry {
        const char* extension;
        DocumentKind kind;
    };
    constexpr std::array<Entry, 9> kKinds{{{"ai", DocumentKind::kIllustrator},
                                           {"ait", DocumentKind::kIllustrator},
                                           {"pdf", DocumentKind::kIllustrator},
                                           {"psd", DocumentKind::kPhotoshop},
                                           {"psb", DocumentKind::kPhotoshop},
                                           {"aep", DocumentKind::kAfterEffects},
                                           {"aet", DocumentKind::kAfterEffects},
                                           {"aepx", DocumentKind::kAfterEffects},
                                           {"eps", DocumentKind::kEps}}};
    const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                    [&](const Entry& each) { return extension == each.extension; });
    return found != kKinds.end() ? found->kind : DocumentKind::kUnknown;
}

/// As isgraph in the "C" locale, whatever locale the host has set.
bool IsGraphic(char byte) {
    return byte > 0x20 && byte < 0x7F;
}

/// Where the name in [begin, end) really ends: after its last printable byte that is not the end marker's
/// first.
size_t TrimmedEnd(std::string_view chunk, size_t begin, size_t end, char endMarker) {
    for (size_t position = end; position > begin; --position) {
        const char byte = chunk[position - 1];
        if (IsGraphic(byte) && byte != endMarker)
            return position;
    }
    return end;
}

/// Big-endian UTF-16 text reads as its low bytes: zero bytes are passed over, the others are code units.
std::string NameFromBytes(std::string_view bytes) {
    std::u16string units;
    units.reserve(bytes.size());
    for (const char byte : bytes) {
        if (byte != '\0')
            units.push_back(static_cast<unsigned char>(byte));
    }
    return Utf16ToUtf8(units);
}

bool IsDefaultFontAlone(const std::set<std::string>& names) {
    return names.size() == 1 && names.begin()->find(kIllustratorDefaultFont) != std::string::npos;
}

/// The names of one Photoshop text layer: the invisible font is no font of the user's, and ends the list
/// unless it opens it.
void TakePhotoshopNames(const std::vector<std::string>& names, std::set<std::string>& fontNames) {
    for (size_t index = 0; index < names.size(); ++index) {
        if (names[index] != kInvisibleFont)
            fontNames.insert(names[index]);
        else if (index > 0)
            return;
    }
}

/// The names of one After Effects text layer. Its first list names the default font whether it is used or
/// not; the invisible font at the end of the lists tells that it is.
void TakeAfterEffectsNames(const std::vector<std::vector<std::string>>& namesByRange,
                           std::set<std::string>& fontNames) {
    bool defaultFontSeen = false;
    for (size_t range = 0; range < namesByRange.size(); ++range) {
        for (const std::string& name : namesByRange[range]) {
            if (name == kAfterEffectsDefaultFont) {
                defaultFontSeen = defaultFontSeen || range == 0;
            } else if (name == kInvisibleFont) {
                if (defaultFontSeen)
                    fontNames.insert(kAfterEffectsDefaultFont);
                return;
            } else {
                fontNames.insert(name);
            }
        }
    }
}

}  // namespace

ErrorCode GBinaryDocumentFontExtractor::ExtractFontNames(std::set<std::string>& fontNames) {
    fontNames.clear();
    switch (KindOfExtension(mFileSpec.Extension())) {
        case DocumentKind::kIllustrator:
            RETURN_IF_FAILED(ExtractFromIllustrator(fontNames));
            break;
        case DocumentKind::kPhotoshop:
            RETURN_IF_FAILED(ExtractFromPhotoshop(fontNames));
            break;
        case DocumentKind::kAfterEffects:
            RETURN_IF_FAILED(ExtractFromAfterEffects(fontNames));
            break;
        case DocumentKind::kEps:
            break;
        case DocumentKind::kUnknown:
            return ExtractFromAnyKind(fontNames);
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromAnyKind(FontNames& fontNames) {
    uint64_t fileSize = 0;
    RETURN_IF_FAILED(GFileSystem::OSGetFileSize(mFileSpec, fileSize));
    if (fileSize >= kUnknownKindSizeLimit)
        return CoreErrorCodes::kSuccess;
    RETURN_IF_FAILED(ExtractFromIllustrator(fontNames));
    RETURN_IF_FAILED(ExtractFromPhotoshop(fontNames));
    RETURN_IF_FAILED(ExtractFromAfterEffects(fontNames));
    return CoreErrorCodes::kSuccess;
}

ErrorCode GBinaryDocumentFontExtractor::SearchInChunks(std::string_view rangeStart,
                                                       const ChunkSearch& search) {
    uint64_t fileSize = 0;
    RETURN_IF_FAILED(GFileSystem::OSGetFileSize(mFileSpec, fileSize));
    const size_t ordinaryAdvance = ChunkSize() > rangeStart.size() ? ChunkSize() - rangeStart.size() : 1;
    std::vector<uint8_t> fileChunk;
    uint64_t currentPosition = 0;
    while (currentPosition < fileSize) {
        const auto numBytesToRead =
            static_cast<size_t>(std::min<uint64_t>(fileSize - currentPosition, ChunkSize()));
        GFile file;
        RETURN_IF_FAILED(file.Open(mFileSpec, GFile::eBinary | GFile::eRead));
        RETURN_IF_FAILED(file.SetFilePosition(GFile::eBeginning, currentPosition));
        RETURN_IF_FAILED(file.Read(numBytesToRead, fileChunk));
        RETURN_IF_FAILED(file.Close());
        const size_t resumeOffset =
            search(std::string_view(reinterpret_cast<const char*>(fileChunk.data()), fileChunk.size()));
        // A marker that the chunk's end cuts is found again at the start of the next chunk.
        currentPosition += resumeOffset != 0 ? resumeOffset : ordinaryAdvance;
    }
    return CoreErrorCodes::kSuccess;
}

void GBinaryDocumentFontExtractor::GetFontNamesFromByteVector(std::string_view chunk, size_t begin,
                                                              size_t end, const Markers& markers,
                                                              FontNames& fontNames,
                                                              std::vector<NamesOfRange>& namesByRange,
                                                              size_t& resumeOffset) {
    for (const ByteRange& range :
         FindRanges(chunk, begin, end, {markers.rangeStart, markers.nameStart, markers.rangeEnd})) {
        NamesOfRange& names = namesByRange.emplace_back();
        if (range.IsIncomplete()) {
            if (range.begin != 0)
                resumeOffset = range.begin;
            continue;
        }
        for (const ByteRange& occurrence : FindRanges(
                 chunk, range.begin, range.end, {markers.nameStart, markers.nameStart, markers.nameEnd})) {
            if (occurrence.IsIncomplete())
                continue;
            size_t nameBegin = occurrence.begin + markers.nameStart.size();
            if (const auto separator = FindMarker(chunk, nameBegin, occurrence.end, markers.prefixSeparator))
                nameBegin = *separator + markers.prefixSeparator.size();
            const size_t nameEnd = TrimmedEnd(chunk, nameBegin, occurrence.end, markers.nameEnd[0]);
            std::string name = NameFromBytes(chunk.substr(nameBegin, nameEnd - nameBegin));
            LogMessage(0, "In %s(), adding '%s'", "GBinaryDocumentFontExtractor::GetFontNamesFromByteVector",
                       name.c_str());
            fontNames.insert(name);
            names.push_back(std::move(name));
        }
    }
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromIllustrator(FontNames& fontNames) {
    constexpr std::string_view kRangeStart = "/FontName";
    // Writers differ in the blank before the name.
    constexpr std::array<Markers, 2> kPasses{
        {{kRangeStart, "/FontName /", "+", "/", ">>"}, {kRangeStart, "/FontName/", "+", "/", ">>"}}};
    FontNames runningNames;
    return SearchInChunks(kRangeStart, [&](std::string_view chunk) {
        size_t advance = 0;
        for (const Markers& markers : kPasses) {
            std::vector<NamesOfRange> namesByRange;
            size_t resumeOffset = 0;
            GetFontNamesFromByteVector(chunk, 0, chunk.size(), markers, runningNames, namesByRange,
                                       resumeOffset);
            if (!IsDefaultFontAlone(runningNames))
                fontNames.insert(runningNames.begin(), runningNames.end());
            if (advance == 0)
                advance = resumeOffset;
        }
        return advance;
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromPhotoshop(FontNames& fontNames) {
    constexpr Markers kMarkers{"/FontSet [", "/Name (", kByteOrderMark, ")", "]"};
    return SearchInChunks(kMarkers.rangeStart, [&](std::string_view chunk) {
        FontNames allNames;
        std::vector<NamesOfRange> namesByRange;
        size_t resumeOffset = 0;
        GetFontNamesFromByteVector(chunk, 0, chunk.size(), kMarkers, allNames, namesByRange, resumeOffset);
        for (const NamesOfRange& names : namesByRange)
            TakePhotoshopNames(names, fontNames);
        return resumeOffset;
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromAfterEffects(FontNames& fontNames) {
    constexpr Markers kMarkers{"<< /99 /CoolTypeFont /0", "/0 (", kByteOrderMark, ") ", ">>"};
    constexpr RangeMarkers kLayerMarkers{">> /0 << /1 << /0 [", kMarkers.rangeStart, "] >>"};
    return SearchInChunks(kLayerMarkers.rangeStart, [&](std::string_view chunk) {
        size_t advance = 0;
        for (const ByteRange& layer : FindRanges(chunk, 0, chunk.size(), kLayerMarkers)) {
            if (layer.IsIncomplete()) {
                advance = layer.begin;
                continue;
            }
            FontNames allNames;
            std::vector<NamesOfRange> namesByRange;
            size_t unusedResumeOffset = 0;
            GetFontNamesFromByteVector(chunk, layer.begin, layer.end, kMarkers, allNames, namesByRange,
                                       unusedResumeOffset);
            TakeAfterEffectsNames(namesByRange, fontNames);
        }
        return advance;
    });
}

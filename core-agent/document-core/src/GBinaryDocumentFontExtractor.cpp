#include "GBinaryDocumentFontExtractor.h"

#include <algorithm>
#include <array>

#include "FailureReport.h"
#include "StringConversion.h"
#include "TraceLog.h"

namespace {

constexpr char kLogCategory[] = "BinaryDocumentFontExtractor";

// Above this size, searching a file of unknown kind three times takes longer than anyone waits.
constexpr uint64_t kUnknownKindSizeLimit = 0x40000000;

constexpr std::string_view kByteOrderMark = "\xFE\xFF";
// Writers differ in the blank before the name.
constexpr std::array<std::string_view, 2> kIllustratorNameStarts{"/FontName /", "/FontName/"};
constexpr std::array<std::string_view, 1> kPhotoshopNameStarts{"/Name ("};
constexpr std::array<std::string_view, 1> kAfterEffectsNameStarts{"/0 ("};

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

/// `name` up to its last printable byte that is not the end marker's first; all of it when there is none.
std::string_view WithoutTail(std::string_view name, char endMarker) {
    for (size_t length = name.size(); length > 0; --length) {
        if (IsGraphic(name[length - 1]) && name[length - 1] != endMarker)
            return name.substr(0, length);
    }
    return name;
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
    const size_t chunkSize = ChunkSize();
    mWindow.resize(static_cast<size_t>(std::min<uint64_t>(fileSize, WindowSize())));
    // A marker that the chunk's end cuts is found again at the start of the next chunk.
    const size_t ordinaryAdvance = chunkSize > rangeStart.size() ? chunkSize - rangeStart.size() : 1;
    uint64_t currentPosition = 0;
    while (currentPosition < fileSize) {
        const auto numBytesToRead =
            static_cast<size_t>(std::min<uint64_t>(fileSize - currentPosition, chunkSize));
        GFile file;
        RETURN_IF_FAILED(file.Open(mFileSpec, GFile::eBinary | GFile::eRead));
        RETURN_IF_FAILED(file.SetFilePosition(GFile::eBeginning, currentPosition));
        FileChunk fileChunk(file, currentPosition, numBytesToRead, mWindow);
        const size_t resumeOffset = search(fileChunk);
        if (fileChunk.Status() != CoreErrorCodes::kSuccess) {
            ReportFailure(kLogCategory, {"file.Read(numBytesToRead, fileChunk)", __FILE__, __LINE__},
                          fileChunk.Status());
            return fileChunk.Status();
        }
        RETURN_IF_FAILED(file.Close());
        currentPosition += resumeOffset != 0 ? resumeOffset : ordinaryAdvance;
    }
    return CoreErrorCodes::kSuccess;
}

std::string GBinaryDocumentFontExtractor::ReadName(FileChunk& chunk, ByteRange name, const Markers& markers) {
    if (const auto separator = chunk.Find(name.begin, name.end, markers.prefixSeparator))
        name.begin = *separator + markers.prefixSeparator.size();
    return NameFromBytes(WithoutTail(chunk.Bytes(name.begin, name.end), markers.nameEnd.front()));
}

std::optional<size_t> GBinaryDocumentFontExtractor::GetFontNamesFromByteVector(FileChunk& chunk,
                                                                               ByteRange span,
                                                                               const Markers& markers,
                                                                               const NamesTaker& take) {
    return ForEachRange(chunk, span, markers.rangeStart, markers.rangeEnd, [&](ByteRange range) {
        for (const std::string_view nameStart : markers.nameStarts) {
            const auto firstName = FindStartMarker(chunk, range, nameStart);
            if (!firstName)
                continue;
            NamesOfRange names;
            ForEachRange(chunk, {*firstName, range.end}, nameStart, markers.nameEnd, [&](ByteRange each) {
                names.push_back(ReadName(chunk, {each.begin + nameStart.size(), each.end}, markers));
                LogMessage(0, "In %s(), adding '%s'",
                           "GBinaryDocumentFontExtractor::GetFontNamesFromByteVector", names.back().c_str());
            });
            take(names);
        }
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromIllustrator(FontNames& fontNames) {
    constexpr Markers kMarkers{"/FontName", kIllustratorNameStarts, "+", "/", ">>"};
    FontNames runningNames;
    return SearchInChunks(kMarkers.rangeStart, [&](FileChunk& chunk) {
        const auto cutRange = GetFontNamesFromByteVector(
            chunk, {0, chunk.Size()}, kMarkers,
            [&](const NamesOfRange& names) { runningNames.insert(names.begin(), names.end()); });
        if (!IsDefaultFontAlone(runningNames))
            fontNames.insert(runningNames.begin(), runningNames.end());
        return cutRange.value_or(0);
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromPhotoshop(FontNames& fontNames) {
    constexpr Markers kMarkers{"/FontSet [", kPhotoshopNameStarts, kByteOrderMark, ")", "]"};
    return SearchInChunks(kMarkers.rangeStart, [&](FileChunk& chunk) {
        const auto cutRange = GetFontNamesFromByteVector(
            chunk, {0, chunk.Size()}, kMarkers,
            [&](const NamesOfRange& names) { TakePhotoshopNames(names, fontNames); });
        return cutRange.value_or(0);
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromAfterEffects(FontNames& fontNames) {
    constexpr std::string_view kLayerStart = ">> /0 << /1 << /0 [";
    constexpr std::string_view kLayerEnd = "] >>";
    constexpr Markers kMarkers{"<< /99 /CoolTypeFont /0", kAfterEffectsNameStarts, kByteOrderMark, ") ",
                               ">>"};
    return SearchInChunks(kLayerStart, [&](FileChunk& chunk) {
        const auto cutLayer =
            ForEachRange(chunk, {0, chunk.Size()}, kLayerStart, kLayerEnd, [&](ByteRange layer) {
                const auto firstFont = FindStartMarker(chunk, layer, kMarkers.rangeStart);
                if (!firstFont)
                    return;
                std::vector<NamesOfRange> namesByRange;
                GetFontNamesFromByteVector(chunk, {*firstFont, layer.end}, kMarkers,
                                           [&](const NamesOfRange& names) { namesByRange.push_back(names); });
                TakeAfterEffectsNames(namesByRange, fontNames);
            });
        return cutLayer.value_or(0);
    });
}

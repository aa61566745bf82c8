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
    constexpr size_t kPieceSize = 4096;  // a name as long as a document is not copied as a whole
    std::string name;
    while (!bytes.empty()) {
        std::u16string units;
        for (const char byte : bytes.substr(0, kPieceSize)) {
            if (byte != '\0')
                units.push_back(static_cast<unsigned char>(byte));
        }
        name += Utf16ToUtf8(units);
        bytes.remove_prefix(std::min(bytes.size(), kPieceSize));
    }
    return name;
}

bool IsDefaultFontAlone(const std::set<std::string>& names) {
    return names.size() == 1 && names.begin()->find(kIllustratorDefaultFont) != std::string::npos;
}

/// Takes the names of a Photoshop text layer, the first of which has index 0: the invisible font is no font
/// of the user's, and ends the list unless it opens it.
class PhotoshopNames {
public:
    explicit PhotoshopNames(std::set<std::string>& fontNames) : mFontNames(fontNames) {}

    void Take(size_t index, std::string&& name) {
        if (index == 0)
            mHasEnded = false;
        if (mHasEnded)
            return;
        if (name != kInvisibleFont)
            mFontNames.insert(std::move(name));
        else if (index > 0)
            mHasEnded = true;
    }

private:
    std::set<std::string>& mFontNames;
    bool mHasEnded = false;
};

/// Takes the names of one After Effects text layer. Its first list names the default font whether it is used
/// or not; the invisible font at the end of the lists tells that it is.
class AfterEffectsNames {
public:
    explicit AfterEffectsNames(std::set<std::string>& fontNames) : mFontNames(fontNames) {}

    void Take(size_t range, std::string&& name) {
        if (mHasEnded)
            return;
        if (name == kAfterEffectsDefaultFont) {
            mIsDefaultFontSeen = mIsDefaultFontSeen || range == 0;
        } else if (name == kInvisibleFont) {
            mHasEnded = true;
            if (mIsDefaultFontSeen)
                mFontNames.insert(kAfterEffectsDefaultFont);
        } else {
            mFontNames.insert(std::move(name));
        }
    }

private:
    std::set<std::string>& mFontNames;
    bool mIsDefaultFontSeen = false;
    bool mHasEnded = false;
};

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
                                                                               const NameTaker& take) {
    size_t rangeCount = 0;
    return ForEachRange(chunk, span, markers.rangeStart, markers.rangeEnd, [&](ByteRange range) {
        for (const std::string_view nameStart : markers.nameStarts) {
            const auto firstName = FindStartMarker(chunk, range, nameStart);
            if (!firstName)
                continue;
            FoundName found{rangeCount++, 0, {}};
            ForEachRange(chunk, {*firstName, range.end}, nameStart, markers.nameEnd, [&](ByteRange each) {
                found.name = ReadName(chunk, {each.begin + nameStart.size(), each.end}, markers);
                if (chunk.Status() != CoreErrorCodes::kSuccess)
                    return;
                LogMessage(0, "In %s(), adding '%s'",
                           "GBinaryDocumentFontExtractor::GetFontNamesFromByteVector", found.name.c_str());
                take(std::move(found));
                ++found.index;
            });
        }
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromIllustrator(FontNames& fontNames) {
    constexpr Markers kMarkers{"/FontName", kIllustratorNameStarts, "+", "/", ">>"};
    FontNames runningNames;
    return SearchInChunks(kMarkers.rangeStart, [&](FileChunk& chunk) {
        const auto cutRange = GetFontNamesFromByteVector(
            chunk, {0, chunk.Size()}, kMarkers,
            [&](FoundName&& found) { runningNames.insert(std::move(found.name)); });
        if (!IsDefaultFontAlone(runningNames))
            fontNames.insert(runningNames.begin(), runningNames.end());
        return cutRange.value_or(0);
    });
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFromPhotoshop(FontNames& fontNames) {
    constexpr Markers kMarkers{"/FontSet [", kPhotoshopNameStarts, kByteOrderMark, ")", "]"};
    PhotoshopNames names(fontNames);
    return SearchInChunks(kMarkers.rangeStart, [&](FileChunk& chunk) {
        const auto cutRange = GetFontNamesFromByteVector(
            chunk, {0, chunk.Size()}, kMarkers,
            [&](FoundName&& found) { names.Take(found.index, std::move(found.name)); });
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
                AfterEffectsNames names(fontNames);
                GetFontNamesFromByteVector(chunk, {*firstFont, layer.end}, kMarkers, [&](FoundName&& found) {
                    names.Take(found.range, std::move(found.name));
                });
            });
        return cutLayer.value_or(0);
    });
}

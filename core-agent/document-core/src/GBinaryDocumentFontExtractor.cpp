#include "GBinaryDocumentFontExtractor.h"

#include <algorithm>
#include <array>

#include "FailureReport.h"
#include "StringConversion.h"
#include "TraceLog.h"
#include "platform/Clock.h"

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

/// In bytes; fonts have names of a few dozen.
constexpr size_t kLongestPossibleName = 4096;

/// A name may be as long as a document: it is read in pieces, none of which takes much time or memory.
constexpr size_t kPieceSize = size_t{64} << 10;

/// Where the name ends: behind its last printable byte that is not the end marker's first, or else where it
/// does.
size_t EndOfName(FileChunk& chunk, ByteRange name, char endMarker) {
    for (size_t end = name.end; end > name.begin && chunk.IsIntact();) {
        const size_t begin = end - std::min(end - name.begin, kPieceSize);
        const std::string_view piece = chunk.Bytes(begin, end);
        for (size_t length = piece.size(); length > 0; --length) {
            if (IsGraphic(piece[length - 1]) && piece[length - 1] != endMarker)
                return begin + length;
        }
        end = begin;
    }
    return name.end;
}

/// Big-endian UTF-16 text reads as its low bytes: zero bytes are passed over, the others are code units.
std::string NameFromBytes(std::string_view bytes) {
    std::u16string units;
    for (const char byte : bytes) {
        if (byte != '\0')
            units.push_back(static_cast<unsigned char>(byte));
    }
    return Utf16ToUtf8(units);
}

bool IsDefaultFontAlone(const std::set<std::string>& names) {
    return names.size() == 1 && names.begin()->find(kIllustratorDefaultFont) != std::string::npos;
}

/// Takes the names of a Photoshop text layer, the first of which has index 0: the invisible font is not a font
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

void EraseImpossibleNames(std::set<std::string>& fontNames) {
    const size_t erased = std::erase_if(
        fontNames, [](const auto& name) { return name.empty() || name.size() > kLongestPossibleName; });
    if (erased != 0)
        LogMessage(0, "%d name(s) left out that no font can have", static_cast<int>(erased));
}

bool GBinaryDocumentFontExtractor::KnowsKindOf(const GFileSystemSpec& fileSpec) {
    return KindOfExtension(fileSpec.Extension()) != DocumentKind::kUnknown;
}

ErrorCode GBinaryDocumentFontExtractor::ExtractFontNames(std::set<std::string>& fontNames) {
    fontNames.clear();
    mHasGivenWay = false;
    mBeginTick = platform::Current<platform::Clock>().TickCount();
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
    while (currentPosition < fileSize && !mHasGivenWay) {
        const auto numBytesToRead =
            static_cast<size_t>(std::min<uint64_t>(fileSize - currentPosition, chunkSize));
        size_t resumeOffset = 0;
        if (const ErrorCode code = SearchChunk(currentPosition, numBytesToRead, search, resumeOffset))
            return code;  // reported there
        currentPosition += resumeOffset != 0 ? resumeOffset : ordinaryAdvance;
    }
    return CoreErrorCodes::kSuccess;
}

ErrorCode GBinaryDocumentFontExtractor::SearchChunk(uint64_t currentPosition, size_t numBytesToRead,
                                                    const ChunkSearch& search, size_t& resumeOffset) {
    GFile file;
    RETURN_IF_FAILED(file.Open(mFileSpec, GFile::eBinary | GFile::eRead));
    RETURN_IF_FAILED(file.SetFilePosition(GFile::eBeginning, currentPosition));
    const FileChunk::HasTime hasTime = [this] { return HasTime(); };
    FileChunk fileChunk(file, currentPosition, numBytesToRead, mWindow, hasTime);
    resumeOffset = search(fileChunk);
    if (fileChunk.Status() != CoreErrorCodes::kSuccess) {
        ReportFailure(kLogCategory, {"file.Read(numBytesToRead, fileChunk)", __FILE__, __LINE__},
                      fileChunk.Status());
        return fileChunk.Status();
    }
    RETURN_IF_FAILED(file.Close());
    mHasGivenWay = fileChunk.HasGivenWay();
    if (mHasGivenWay)
        LogMessage(0, "The document is too large to be searched for fonts to its end; the host waits");
    return CoreErrorCodes::kSuccess;
}

bool GBinaryDocumentFontExtractor::HasTime() const {
    const uint32_t spent = platform::Current<platform::Clock>().TickCount() - mBeginTick;
    return !mTimeLimit || std::chrono::milliseconds(spent) < *mTimeLimit;
}

std::string GBinaryDocumentFontExtractor::ReadName(FileChunk& chunk, ByteRange name, const Markers& markers) {
    if (const auto separator = chunk.Find(name.begin, name.end, markers.prefixSeparator))
        name.begin = *separator + markers.prefixSeparator.size();
    name.end = EndOfName(chunk, name, markers.nameEnd.front());
    std::string text;
    for (size_t begin = name.begin; begin < name.end && chunk.IsIntact(); begin += kPieceSize)
        text += NameFromBytes(chunk.Bytes(begin, std::min(name.end, begin + kPieceSize)));
    return text;
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
            size_t nameCount = 0;
            ForEachRange(chunk, {*firstName, range.end}, nameStart, markers.nameEnd, [&](ByteRange each) {
                std::string name = ReadName(chunk, {each.begin + nameStart.size(), each.end}, markers);
                if (!chunk.IsIntact())
                    return;
                LogMessage(0, "In %s(), adding '%s'",
                           "GBinaryDocumentFontExtractor::GetFontNamesFromByteVector", name.c_str());
                take({rangeCount, nameCount++, std::move(name)});
            });
            ++rangeCount;
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

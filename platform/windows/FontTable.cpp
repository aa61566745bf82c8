#include "platform/FontTable.h"

#include <windows.h>

#include <map>
#include <utility>
#include <vector>

#include "AddedFonts.h"
#include "WideText.h"

namespace platform {
namespace {

/// A device context and the font that is selected into it for a while.
class FontInDevice {
public:
    FontInDevice(HDC device, const LOGFONTW& wanted)
        : mDevice(device), mFont(CreateFontIndirectW(&wanted)), mPrevious(SelectObject(device, mFont)) {}
    ~FontInDevice() {
        SelectObject(mDevice, mPrevious);
        DeleteObject(mFont);
    }
    FontInDevice(const FontInDevice&) = delete;
    FontInDevice& operator=(const FontInDevice&) = delete;

    /// A table of the font's file; empty when it has none of that name.
    std::vector<unsigned char> Table(const char (&name)[5]) const {
        // GDI wants the name's first letter in the lowest byte.
        const DWORD tag = static_cast<DWORD>(name[0]) | static_cast<DWORD>(name[1]) << 8 |
                          static_cast<DWORD>(name[2]) << 16 | static_cast<DWORD>(name[3]) << 24;
        const DWORD size = GetFontData(mDevice, tag, 0, nullptr, 0);
        if (size == GDI_ERROR)
            return {};
        std::vector<unsigned char> table(size);
        if (GetFontData(mDevice, tag, 0, table.data(), size) != size)
            return {};
        return table;
    }

private:
    HDC mDevice;
    HFONT mFont;
    HGDIOBJ mPrevious;
};

/// The PostScript name in a 'name' table (OpenType 1.9, "name - Naming Table"); empty when there is none. Any
/// content is safe to read.
class NameTable {
public:
    explicit NameTable(std::vector<unsigned char> bytes) : mBytes(std::move(bytes)) {}

    std::string PostScriptName() const {
        constexpr size_t kHeader = 6;
        constexpr size_t kRecord = 12;
        constexpr unsigned kPostScriptName = 6;
        const size_t count = Number(2);
        const size_t texts = Number(4);
        for (size_t index = 0; index < count; ++index) {
            const size_t record = kHeader + index * kRecord;
            if (Number(record + 6) != kPostScriptName)
                continue;
            std::string name = Letters(texts + Number(record + 10), Number(record + 8));
            if (!name.empty())
                return name;
        }
        return {};
    }

private:
    size_t Number(size_t at) const {
        return at + 2 <= mBytes.size() ? static_cast<size_t>(mBytes[at]) << 8 | mBytes[at + 1] : 0;
    }
    /// PostScript names are ASCII, one byte a letter or two: the bytes that are not 0.
    std::string Letters(size_t at, size_t size) const {
        std::string text;
        for (size_t index = at; index < at + size && index < mBytes.size(); ++index) {
            if (mBytes[index] != 0)
                text += static_cast<char>(mBytes[index]);
        }
        return text;
    }

    const std::vector<unsigned char> mBytes;
};

// Nothing may be thrown through the system; without memory the list ends early.
int CALLBACK NoteFont(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM fonts) noexcept {
    try {
        reinterpret_cast<std::vector<ENUMLOGFONTEXW>*>(fonts)->push_back(
            *reinterpret_cast<const ENUMLOGFONTEXW*>(font));
        return 1;
    } catch (...) {
        return 0;
    }
}

std::vector<ENUMLOGFONTEXW> FontsOf(HDC device, const wchar_t* family) {
    std::vector<ENUMLOGFONTEXW> fonts;
    LOGFONTW filter{};
    filter.lfCharSet = DEFAULT_CHARSET;
    lstrcpynW(filter.lfFaceName, family, LF_FACESIZE);
    EnumFontFamiliesExW(device, &filter, NoteFont, reinterpret_cast<LPARAM>(&fonts), 0);
    return fonts;
}

/// Without a family one font of each is listed, once for every character set.
std::set<std::wstring> Families(HDC device) {
    std::set<std::wstring> families;
    for (const ENUMLOGFONTEXW& font : FontsOf(device, L"")) {
        if (font.elfLogFont.lfFaceName[0] != L'@')  // the same, for vertical text
            families.insert(font.elfLogFont.lfFaceName);
    }
    return families;
}

/// What to ask for, to be given each font of a family: by the family's name and style, and by its full name,
/// which alone tells two fonts of one weight and slope apart. They are listed once for every character set.
std::map<std::wstring, LOGFONTW> RequestsFor(HDC device, const std::wstring& family) {
    std::map<std::wstring, LOGFONTW> requests;
    for (const ENUMLOGFONTEXW& font : FontsOf(device, family.c_str())) {
        const std::wstring fullName = font.elfFullName;
        LOGFONTW request = font.elfLogFont;
        requests.emplace(L"of " + fullName, request);
        if (fullName.size() < LF_FACESIZE) {
            lstrcpynW(request.lfFaceName, fullName.c_str(), LF_FACESIZE);
            requests.emplace(fullName, request);
        }
    }
    return requests;
}

/// GDI takes no path of 260 characters or more, so such a file goes by its short name.
std::wstring PathForTable(const std::string& path) {
    constexpr std::wstring_view kWithoutLimit = LR"(\\?\)";
    std::wstring wide = ToWidePath(path);
    if (!wide.starts_with(kWithoutLimit))
        return wide;
    const std::wstring brief = ReadWideText(
        [&](wchar_t* buffer, DWORD size) { return GetShortPathNameW(wide.c_str(), buffer, size); });
    return brief.starts_with(kWithoutLimit) ? brief.substr(kWithoutLimit.size()) : brief;
}

class WindowsFontTable : public FontTable {
public:
    bool IsFilledFromFolders() override { return false; }
    bool Add(const std::string& path) override {
        // First: a font that is added but not noted would stay when this process ends in between.
        NoteAddedFont(path, 1);
        if (AddFontResourceExW(PathForTable(path).c_str(), 0, nullptr) > 0)
            return true;
        NoteAddedFont(path, -1);
        return false;
    }
    bool Remove(const std::string& path) override {
        if (RemoveFontResourceExW(PathForTable(path).c_str(), 0, nullptr)) {
            NoteAddedFont(path, -1);
            return true;
        }
        ForgetAddedFont(path);  // somebody else has taken it out
        return false;
    }
    std::map<std::string, int> Added() override { return AddedFonts(); }
    void AnnounceChange() override { SendNotifyMessageW(HWND_BROADCAST, WM_FONTCHANGE, 0, 0); }

    VisibleFonts Visible() override {
        VisibleFonts visible;
        const HDC device = CreateCompatibleDC(nullptr);
        for (const std::wstring& family : Families(device)) {
            for (const auto& [ignored, request] : RequestsFor(device, family)) {
                // Whatever font it gives is one that it offers.
                const NameTable names(FontInDevice(device, request).Table("name"));
                visible.postScriptNames.insert(names.PostScriptName());
            }
        }
        DeleteDC(device);
        visible.postScriptNames.erase("");
        return visible;
    }
};

}  // namespace

template <>
FontTable& SystemDefault<FontTable>() {
    static WindowsFontTable table;
    return table;
}

std::string WhyNeverShown(std::string_view extension) {
    if (extension == ".pfb" || extension == ".pfa")
        return "Windows shows Type 1 fonts only with metrics of its own kind, which are not kept here";
    if (extension == ".dfont")
        return "Windows does not show font suitcases of the Macintosh";
    return {};
}

}  // namespace platform

#include "FolderChooser.h"

#include <shlobj.h>

#include <memory>
#include <type_traits>
#include <vector>

#include "WideText.h"

namespace platform {
namespace {

/// The longest path of the system, in characters.
constexpr DWORD kLongestPath = 32768;

struct IdentifierListFreer {
    void operator()(ITEMIDLIST* list) const { CoTaskMemFree(list); }
};
using OwnedIdentifierList = std::unique_ptr<ITEMIDLIST, IdentifierListFreer>;

/// A single-threaded apartment, which the resizable chooser needs. A host's thread may be in another kind;
/// then the plain chooser has to do.
class Apartment {
public:
    Apartment() : mResult(OleInitialize(nullptr)) {}
    ~Apartment() {
        if (IsEntered())
            OleUninitialize();
    }
    Apartment(const Apartment&) = delete;
    Apartment& operator=(const Apartment&) = delete;

    bool IsEntered() const { return SUCCEEDED(mResult); }

private:
    const HRESULT mResult;
};

int CALLBACK SelectInitialFolder(HWND chooser, UINT message, LPARAM, LPARAM initialFolder) noexcept {
    if (message == BFFM_INITIALIZED && initialFolder != 0)
        SendMessageW(chooser, BFFM_SETSELECTIONW, TRUE, initialFolder);
    return 0;
}

FolderAnswer AnswerFor(const ITEMIDLIST* chosen) {
    std::vector<wchar_t> path(kLongestPath);
    if (!SHGetPathFromIDListEx(chosen, path.data(), kLongestPath, GPFIDL_DEFAULT))
        return {FolderAnswer::Outcome::kNoPath, {}};
    return {FolderAnswer::Outcome::kChosen, ToUtf8(path.data())};
}

}  // namespace

FolderAnswer RunFolderChooser(HWND owner, const std::wstring& prompt, const std::wstring& initialFolder) {
    const Apartment apartment;
    BROWSEINFOW chooser{};
    chooser.hwndOwner = owner;
    chooser.lpszTitle = prompt.c_str();
    chooser.ulFlags = BIF_RETURNONLYFSDIRS;
    if (apartment.IsEntered())
        chooser.ulFlags |= BIF_NEWDIALOGSTYLE;
    chooser.lpfn = SelectInitialFolder;
    chooser.lParam = initialFolder.empty() ? 0 : reinterpret_cast<LPARAM>(initialFolder.c_str());
    const OwnedIdentifierList chosen(SHBrowseForFolderW(&chooser));
    return chosen ? AnswerFor(chosen.get()) : FolderAnswer();
}

}  // namespace platform

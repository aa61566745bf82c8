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
constexpr DWORD kPromptControl = 1;

struct TaskMemoryFreer {
    void operator()(void* memory) const { CoTaskMemFree(memory); }
};
using OwnedIdentifierList = std::unique_ptr<ITEMIDLIST, TaskMemoryFreer>;
using OwnedText = std::unique_ptr<wchar_t, TaskMemoryFreer>;

struct ObjectReleaser {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <class Interface>
using OwnedObject = std::unique_ptr<Interface, ObjectReleaser>;

/// What `query` stores through its last argument; null where it fails.
template <class Interface, class Query>
OwnedObject<Interface> Obtain(const Query& query) {
    Interface* object = nullptr;
    const HRESULT result = query(__uuidof(Interface), reinterpret_cast<void**>(&object));
    return OwnedObject<Interface>(SUCCEEDED(result) ? object : nullptr);
}

/// A single-threaded apartment, which today's chooser needs. A host's thread may be in another kind; then the plain
/// one has to do.
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

FolderAnswer AnswerOf(IFileOpenDialog& chooser) {
    const auto item = Obtain<IShellItem>(
        [&](const IID&, void** object) { return chooser.GetResult(reinterpret_cast<IShellItem**>(object)); });
    wchar_t* path = nullptr;
    if (!item || FAILED(item->GetDisplayName(SIGDN_FILESYSPATH, &path)))
        return {FolderAnswer::Outcome::kNoPath, {}};
    const OwnedText owned(path);
    return {FolderAnswer::Outcome::kChosen, ToUtf8(path)};
}

/// In the folder above it, where there is one, so that it is what Enter chooses.
void SelectFolder(IFileOpenDialog& chooser, const std::wstring& path) {
    const auto folder = Obtain<IShellItem>([&](const IID& id, void** object) {
        return SHCreateItemFromParsingName(path.c_str(), nullptr, id, object);
    });
    wchar_t* name = nullptr;
    if (!folder || FAILED(folder->GetDisplayName(SIGDN_PARENTRELATIVEPARSING, &name)))
        return;
    const OwnedText owned(name);
    const auto above = Obtain<IShellItem>(
        [&](const IID&, void** object) { return folder->GetParent(reinterpret_cast<IShellItem**>(object)); });
    chooser.SetFolder(above ? above.get() : folder.get());
    chooser.SetFileName(above ? name : L"");
}

FolderAnswer RunTodaysChooser(IFileOpenDialog& chooser, HWND owner, const std::wstring& prompt,
                              const std::wstring& initialFolder) {
    chooser.SetOptions(FOS_PICKFOLDERS | FOS_FORCEFILESYSTEM | FOS_PATHMUSTEXIST | FOS_NOCHANGEDIR);
    const auto controls = Obtain<IFileDialogCustomize>(
        [&](const IID& id, void** object) { return chooser.QueryInterface(id, object); });
    if (controls)  // the title has no room for a sentence
        controls->AddText(kPromptControl, prompt.c_str());
    if (!initialFolder.empty())
        SelectFolder(chooser, initialFolder);
    return SUCCEEDED(chooser.Show(owner)) ? AnswerOf(chooser) : FolderAnswer();
}

int CALLBACK SelectInitialFolder(HWND chooser, UINT message, LPARAM, LPARAM initialFolder) noexcept {
    if (message == BFFM_INITIALIZED && initialFolder != 0)
        SendMessageW(chooser, BFFM_SETSELECTIONW, TRUE, initialFolder);
    return 0;
}

FolderAnswer RunPlainChooser(HWND owner, const std::wstring& prompt, const std::wstring& initialFolder) {
    BROWSEINFOW chooser{};
    chooser.hwndOwner = owner;
    chooser.lpszTitle = prompt.c_str();
    chooser.ulFlags = BIF_RETURNONLYFSDIRS;
    chooser.lpfn = SelectInitialFolder;
    chooser.lParam = initialFolder.empty() ? 0 : reinterpret_cast<LPARAM>(initialFolder.c_str());
    const OwnedIdentifierList chosen(SHBrowseForFolderW(&chooser));
    if (!chosen)
        return {};
    std::vector<wchar_t> path(kLongestPath);
    if (!SHGetPathFromIDListEx(chosen.get(), path.data(), kLongestPath, GPFIDL_DEFAULT))
        return {FolderAnswer::Outcome::kNoPath, {}};
    return {FolderAnswer::Outcome::kChosen, ToUtf8(path.data())};
}

}  // namespace

FolderAnswer RunFolderChooser(HWND owner, const std::wstring& prompt, const std::wstring& initialFolder) {
    const Apartment apartment;
    OwnedObject<IFileOpenDialog> chooser;
    if (apartment.IsEntered()) {
        chooser = Obtain<IFileOpenDialog>([](const IID& id, void** object) {
            return CoCreateInstance(CLSID_FileOpenDialog, nullptr, CLSCTX_INPROC_SERVER, id, object);
        });
    }
    return chooser ? RunTodaysChooser(*chooser, owner, prompt, initialFolder)
                   : RunPlainChooser(owner, prompt, initialFolder);
}

}  // namespace platform

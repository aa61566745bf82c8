#include "platform/NativeDialogs.h"

namespace platform {
namespace {

class UnseenProgress : public ProgressWindow {
public:
    bool Show(int32_t, int32_t) override { return true; }
};

/// A Linux host is driven without a display.
class NoDialogs : public NativeDialogs {
public:
    bool IsAvailable() override { return false; }
    bool ShowMessage(WindowHandle, const std::string&, const std::string&, MessageButtons) override {
        return false;
    }
    FolderAnswer ChooseFolder(WindowHandle, const std::string&, const std::string&) override { return {}; }
    int ShowForm(WindowHandle, Form&) override { return kFormCancelled; }
    std::unique_ptr<ProgressWindow> OpenProgress(WindowHandle, const std::string&,
                                                 const std::string&) override {
        return std::make_unique<UnseenProgress>();
    }
};

}  // namespace

template <>
NativeDialogs& SystemDefault<NativeDialogs>() {
    static NoDialogs dialogs;
    return dialogs;
}

}  // namespace platform

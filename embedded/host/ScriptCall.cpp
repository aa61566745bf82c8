#include "ScriptCall.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <utility>

#include "Output.h"
#include "ScopedPresenter.h"

namespace {

using nlohmann::json;
using Code = std::optional<uint32_t>;

/// A text buffer for the core, of the size that the call asks for.
class Buffer {
public:
    Buffer(const Arguments& arguments, const char* sizeName) : mSize(arguments.Number(sizeName, 65536)) {
        mBytes = std::make_unique<char[]>(mSize + 1);  // a zero behind whatever the core does
    }
    char* Bytes() { return mBytes.get(); }
    size_t* Size() { return &mSize; }
    std::string Text() const { return mBytes.get(); }

private:
    size_t mSize;
    std::unique_ptr<char[]> mBytes;
};

void ReportRebuildWorkgroupsMenu() {
    PrintJson(json{{"callback", "RebuildWorkgroupsMenu"}}.dump());
    std::fflush(stdout);
}

uint32_t CollectMenuItem(const char* id, const char* label, void* context) {
    static_cast<json*>(context)->push_back({{"id", id}, {"label", label}});
    return PLUGINCORE_SUCCESS;
}

/// A call whose result is one text in a buffer.
template <class Function>
Code CallWithBuffer(Call& call, const char* bufferName, const char* sizeName, Function&& function) {
    Buffer buffer(call.arguments, sizeName);
    const uint32_t code = function(buffer.Bytes(), buffer.Size());
    call.out[bufferName] = buffer.Text();
    call.out[sizeName] = *buffer.Size();
    return code;
}

// In a function of its name each.
namespace exports {

#define DECLARE_CALLER(name) Code name(Call& call);
PLUGINCORE_FUNCTIONS(DECLARE_CALLER)
#undef DECLARE_CALLER

/// Without arguments: as this program itself starts the core.
Code InitializePluginCoreInterface(Call& call) {
    const ScopedPresenter presenter(call.host.answers);
    if (!call.arguments.Has("pluginIdentifier") && !call.arguments.Has("versionPrefixRequired"))
        return call.core.InitializePluginCoreInterface(PluginIdentifierFor(call.host.app).c_str(), "");
    return call.core.InitializePluginCoreInterface(call.Text("pluginIdentifier"),
                                                   call.Text("versionPrefixRequired"));
}

Code TerminatePluginCoreInterface(Call& call) {
    return call.core.TerminatePluginCoreInterface();
}

Code GetAPIVersion(Call& call) {
    uint32_t version = 0;
    const uint32_t code = call.core.GetAPIVersion(&version, call.arguments.Number("requestedVersion", 0));
    call.out["version"] = version;
    return code;
}

Code PluginIsEnabled(Call& call) {
    bool isEnabled = false;
    const uint32_t code = call.core.PluginIsEnabled(call.arguments.Flag("allowDialogs"), &isEnabled);
    call.out["isEnabled"] = isEnabled;
    return code;
}

Code IdleEvent(Call& call) {
    return call.core.IdleEvent();
}

Code ShouldShowLogin(Call& call) {
    bool showLogin = false;
    call.core.ShouldShowLogin(&showLogin);
    call.out["showLogin"] = showLogin;
    return std::nullopt;
}

Code ShowNotLoggedInMessageBox(Call& call) {
    return call.core.ShowNotLoggedInMessageBox();
}

Code SetRebuildWorkgroupsMenuCallback(Call& call) {
    const bool isSet = !call.arguments.Has("callback") || call.arguments.Flag("callback");
    call.core.SetRebuildWorkgroupsMenuCallback(isSet ? ReportRebuildWorkgroupsMenu : nullptr);
    return std::nullopt;
}

Code GetSocketPort(Call& call) {
    uint32_t port = 0;
    const uint32_t code = call.core.GetSocketPort(&port);
    call.out["port"] = port;
    return code;
}

Code RegisterPlugPlug(Call& call) {
    return call.core.RegisterPlugPlug(call.panels.Handle());
}

Code TryRegisterPlugPlug(Call& call) {
    return call.core.TryRegisterPlugPlug(call.panels.Handle());
}

Code ProcessPanelMessages(Call& call) {
    return call.core.ProcessPanelMessages(call.arguments.Flag("closeListeningSocket"));
}

Code HandleCreateNewDocument(Call& call) {
    return CallWithBuffer(call, "idBuffer", "idBufferSize", call.core.HandleCreateNewDocument);
}

Code HandleOpenExistingDocument(Call& call) {
    Buffer bufferA(call.arguments, "sizeA");
    Buffer bufferB(call.arguments, "sizeB");
    int numFontsActivated = 0;
    const uint32_t code = call.core.HandleOpenExistingDocument(
        call.Text("path"), call.Text("fontsJSON"), bufferA.Bytes(), bufferA.Size(), bufferB.Bytes(),
        bufferB.Size(), &numFontsActivated);
    call.out = {{"bufferA", bufferA.Text()},
                {"sizeA", *bufferA.Size()},
                {"bufferB", bufferB.Text()},
                {"sizeB", *bufferB.Size()},
                {"numFontsActivated", numFontsActivated}};
    return code;
}

Code HandleSaveDocument(Call& call) {
    return call.core.HandleSaveDocument(call.Text("path"), call.Text("hint"));
}

Code HandleCloseDocument(Call& call) {
    return call.core.HandleCloseDocument(call.Text("path"), call.Text("hint"));
}

Code SetPathForDocument(Call& call) {
    return call.core.SetPathForDocument(call.Text("path"), call.Text("documentId"));
}

Code GetIDForDocument(Call& call) {
    return CallWithBuffer(call, "idBuffer", "idBufferSize", [&](char* buffer, size_t* size) {
        return call.core.GetIDForDocument(call.Text("path"), buffer, size);
    });
}

Code UpdateDocumentFontUsage(Call& call) {
    return call.core.UpdateDocumentFontUsage(call.Text("document"), call.Text("fontUsage"));
}

Code ActivateChosenFonts(Call& call) {
    uint32_t count = 0;
    const uint32_t code = call.core.ActivateChosenFonts(call.Text("path"), call.Text("fontsJSON"), &count);
    call.out["outCount"] = count;
    return code;
}

Code InvokeResolveDialog(Call& call) {
    Buffer result(call.arguments, "resultSize");
    Buffer skipped(call.arguments, "skippedSize");
    const uint32_t code =
        call.core.InvokeResolveDialog(call.arguments.Flag("onlyIfResolvable"), call.Text("fontsJSON"),
                                      result.Bytes(), result.Size(), skipped.Bytes(), skipped.Size());
    call.out = {{"resultBuffer", result.Text()},
                {"resultSize", *result.Size()},
                {"skippedBuffer", skipped.Text()},
                {"skippedSize", *skipped.Size()}};
    return code;
}

Code InvokeRestrictedFontsDialog(Call& call) {
    return call.core.InvokeRestrictedFontsDialog(call.arguments.Flag("onlyNew"), call.Text("fontsJSON"));
}

Code GetMenus(Call& call) {
    return CallWithBuffer(call, "buffer", "size", [&](char* buffer, size_t* size) {
        return call.core.GetMenus(call.Text("document"), buffer, size);
    });
}

Code CreateMenusFromJSONBuffer(Call& call) {
    json items = json::array();
    const uint32_t code =
        call.core.CreateMenusFromJSONBuffer(call.Text("menusJSON"), CollectMenuItem, &items);
    call.out["items"] = std::move(items);
    return code;
}

Code HandleMenuSelection(Call& call) {
    return call.core.HandleMenuSelection(call.Text("document"), call.Text("menusJSON"),
                                         call.Text("selectedID"), call.Text("extra"));
}

Code InvokeCommandDialog(Call& call) {
    return call.core.InvokeCommandDialog(call.Text("document"));
}

Code GetSettings(Call& call) {
    return CallWithBuffer(call, "buffer", "bufferSize", call.core.GetSettings);
}

Code SetPreference(Call& call) {
    return call.core.SetPreference(call.Text("key"), call.Text("value"));
}

}  // namespace exports

constexpr std::pair<std::string_view, Caller> kCallers[] = {
#define NAME_CALLER(name) {#name, exports::name},
    PLUGINCORE_FUNCTIONS(NAME_CALLER)
#undef NAME_CALLER
};

}  // namespace

Caller FindCaller(std::string_view name) {
    const auto found = std::find_if(std::begin(kCallers), std::end(kCallers),
                                    [&](const auto& caller) { return caller.first == name; });
    return found != std::end(kCallers) ? found->second : nullptr;
}

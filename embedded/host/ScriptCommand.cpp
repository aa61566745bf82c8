#include <iostream>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "Commands.h"
#include "Output.h"
#include "PanelEventService.h"

namespace {

using nlohmann::json;

/// The arguments of one call. What is missing or null is a null pointer to the core.
class Arguments {
public:
    explicit Arguments(json values) : mValues(std::move(values)) {}

    /// A text argument; JSON that is no string is passed as its text.
    const char* Text(const char* name) {
        const auto found = mValues.find(name);
        if (found == mValues.end() || found->is_null())
            return nullptr;
        std::string& text = mTexts[name];
        text = found->is_string() ? found->get<std::string>() : found->dump();
        return text.c_str();
    }
    bool Flag(const char* name) const { return mValues.value(name, false); }
    uint32_t Number(const char* name, uint32_t otherwise) const { return mValues.value(name, otherwise); }
    bool Has(const char* name) const { return mValues.contains(name) && !mValues[name].is_null(); }

private:
    json mValues;
    std::map<std::string, std::string> mTexts;
};

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

template <class Answer>
void PrintAnswer(const Answer& answer) {
    PrintJson(answer.dump(-1, ' ', false, json::error_handler_t::replace));
    std::fflush(stdout);
}

void ReportRebuildWorkgroupsMenu() {
    PrintAnswer(json{{"callback", "RebuildWorkgroupsMenu"}});
}

uint32_t CollectMenuItem(const char* id, const char* label, void* context) {
    static_cast<json*>(context)->push_back({{"id", id}, {"label", label}});
    return PLUGINCORE_SUCCESS;
}

/// What the core tells panels, with the members of the message in their order.
void PrintEvent(const PlugPlugEvent& event) {
    using Json = nlohmann::ordered_json;
    Json line{{"event", event.type}};
    const std::string data = event.data != nullptr ? event.data : "";
    const Json message = Json::parse(data, nullptr, false);
    if (message.is_discarded())
        line["data"] = data;
    else
        line["message"] = message;
    PrintAnswer(line);
}

/// The host of the script: the core and the panels.
struct ScriptHost {
    const HostOptions& options;
    PanelEventService panels{PrintEvent};
    CoreLibrary core{};
};

/// One call of the script.
struct Call {
    const CoreLibrary& core;
    const HostOptions& host;
    PanelEventService& panels;
    Arguments arguments;
    json out = json::object();

    const char* Text(const char* name) { return arguments.Text(name); }
};

using Code = std::optional<uint32_t>;  ///< what an export answered, if it answers
using Caller = Code (*)(Call& call);

Code CallOpen(Call& call) {
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

Code CallResolve(Call& call) {
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

/// Without arguments: as this program itself starts the core.
Code CallInitialize(Call& call) {
    if (!call.arguments.Has("pluginIdentifier") && !call.arguments.Has("versionPrefixRequired"))
        return call.core.InitializePluginCoreInterface(PluginIdentifierFor(call.host.app).c_str(), "");
    return call.core.InitializePluginCoreInterface(call.Text("pluginIdentifier"),
                                                   call.Text("versionPrefixRequired"));
}

Code CallCreateMenus(Call& call) {
    json items = json::array();
    const uint32_t code =
        call.core.CreateMenusFromJSONBuffer(call.Text("menusJSON"), CollectMenuItem, &items);
    call.out["items"] = std::move(items);
    return code;
}

/// A call whose result is one text in a buffer.
template <class Function>
Code CallWithBuffer(Call& call, const char* bufferName, const char* sizeName, Function&& function) {
    Buffer buffer(call.arguments, sizeName);
    const uint32_t code = function(buffer.Bytes(), buffer.Size());
    call.out = {{bufferName, buffer.Text()}, {sizeName, *buffer.Size()}};
    return code;
}

const std::map<std::string, Caller>& DocumentCallers() {
    static const std::map<std::string, Caller> callers{
        {"HandleCreateNewDocument",
         [](Call& call) {
             return CallWithBuffer(call, "idBuffer", "idBufferSize", call.core.HandleCreateNewDocument);
         }},
        {"HandleOpenExistingDocument", CallOpen},
        {"HandleSaveDocument",
         [](Call& call) -> Code {
             return call.core.HandleSaveDocument(call.Text("path"), call.Text("hint"));
         }},
        {"HandleCloseDocument",
         [](Call& call) -> Code {
             return call.core.HandleCloseDocument(call.Text("path"), call.Text("hint"));
         }},
        {"SetPathForDocument",
         [](Call& call) -> Code {
             return call.core.SetPathForDocument(call.Text("path"), call.Text("documentId"));
         }},
        {"GetIDForDocument",
         [](Call& call) {
             return CallWithBuffer(call, "idBuffer", "idBufferSize", [&](char* buffer, size_t* size) {
                 return call.core.GetIDForDocument(call.Text("path"), buffer, size);
             });
         }},
        {"UpdateDocumentFontUsage",
         [](Call& call) -> Code {
             return call.core.UpdateDocumentFontUsage(call.Text("document"), call.Text("fontUsage"));
         }},
        {"ActivateChosenFonts",
         [](Call& call) -> Code {
             uint32_t count = 0;
             const uint32_t code =
                 call.core.ActivateChosenFonts(call.Text("path"), call.Text("fontsJSON"), &count);
             call.out["outCount"] = count;
             return code;
         }},
        {"InvokeResolveDialog", CallResolve},
        {"InvokeRestrictedFontsDialog",
         [](Call& call) -> Code {
             return call.core.InvokeRestrictedFontsDialog(call.arguments.Flag("onlyNew"),
                                                          call.Text("fontsJSON"));
         }},
    };
    return callers;
}

const std::map<std::string, Caller>& LifecycleCallers() {
    static const std::map<std::string, Caller> callers{
        {"InitializePluginCoreInterface", CallInitialize},
        {"TerminatePluginCoreInterface",
         [](Call& call) -> Code { return call.core.TerminatePluginCoreInterface(); }},
        {"GetAPIVersion",
         [](Call& call) -> Code {
             uint32_t version = 0;
             const uint32_t code =
                 call.core.GetAPIVersion(&version, call.arguments.Number("requestedVersion", 0));
             call.out["version"] = version;
             return code;
         }},
        {"PluginIsEnabled",
         [](Call& call) -> Code {
             bool isEnabled = false;
             const uint32_t code = call.core.PluginIsEnabled(call.arguments.Flag("allowDialogs"), &isEnabled);
             call.out["isEnabled"] = isEnabled;
             return code;
         }},
        {"IdleEvent", [](Call& call) -> Code { return call.core.IdleEvent(); }},
        {"ShouldShowLogin",
         [](Call& call) -> Code {
             bool showLogin = false;
             call.core.ShouldShowLogin(&showLogin);
             call.out["showLogin"] = showLogin;
             return std::nullopt;
         }},
        {"ShowNotLoggedInMessageBox",
         [](Call& call) -> Code { return call.core.ShowNotLoggedInMessageBox(); }},
        {"SetRebuildWorkgroupsMenuCallback",
         [](Call& call) -> Code {
             const bool isSet = !call.arguments.Has("callback") || call.arguments.Flag("callback");
             call.core.SetRebuildWorkgroupsMenuCallback(isSet ? ReportRebuildWorkgroupsMenu : nullptr);
             return std::nullopt;
         }},
    };
    return callers;
}

const std::map<std::string, Caller>& OtherCallers() {
    static const std::map<std::string, Caller> callers{
        {"GetSocketPort",
         [](Call& call) -> Code {
             uint32_t port = 0;
             const uint32_t code = call.core.GetSocketPort(&port);
             call.out["port"] = port;
             return code;
         }},
        {"RegisterPlugPlug",
         [](Call& call) -> Code { return call.core.RegisterPlugPlug(call.panels.Handle()); }},
        {"TryRegisterPlugPlug",
         [](Call& call) -> Code { return call.core.TryRegisterPlugPlug(call.panels.Handle()); }},
        {"ProcessPanelMessages",
         [](Call& call) -> Code {
             return call.core.ProcessPanelMessages(call.arguments.Flag("closeListeningSocket"));
         }},
        {"GetMenus",
         [](Call& call) {
             return CallWithBuffer(call, "buffer", "size", [&](char* buffer, size_t* size) {
                 return call.core.GetMenus(call.Text("document"), buffer, size);
             });
         }},
        {"CreateMenusFromJSONBuffer", CallCreateMenus},
        {"HandleMenuSelection",
         [](Call& call) -> Code {
             return call.core.HandleMenuSelection(call.Text("document"), call.Text("menusJSON"),
                                                  call.Text("selectedID"), call.Text("extra"));
         }},
        {"InvokeCommandDialog",
         [](Call& call) -> Code { return call.core.InvokeCommandDialog(call.Text("document")); }},
        {"GetSettings",
         [](Call& call) { return CallWithBuffer(call, "buffer", "bufferSize", call.core.GetSettings); }},
        {"SetPreference",
         [](Call& call) -> Code { return call.core.SetPreference(call.Text("key"), call.Text("value")); }},
    };
    return callers;
}

Caller FindCaller(const std::string& name) {
    for (const auto* callers : {&LifecycleCallers(), &DocumentCallers(), &OtherCallers()}) {
        const auto found = callers->find(name);
        if (found != callers->end())
            return found->second;
    }
    return nullptr;
}

json MakeCall(ScriptHost& host, const json& request) {
    const std::string name = request.at("call").get<std::string>();
    const Caller caller = FindCaller(name);
    if (caller == nullptr)
        throw std::invalid_argument("there is no call named " + name);
    Call call{host.core, host.options, host.panels, Arguments(request.value("args", json::object()))};
    const Code code = caller(call);
    json answer{{"call", name}, {"out", std::move(call.out)}};
    if (code) {
        answer["code"] = *code;
        answer["codeName"] = ResultName(*code);
    }
    return answer;
}

/// A string is sent as it is, so that a script can send what is no JSON.
json SendPanelMessage(ScriptHost& host, const json& message) {
    const std::string text = message.is_string() ? message.get<std::string>() : message.dump();
    if (!host.panels.Send(kPanelToPluginEvent, text))
        throw std::logic_error(std::string("nothing listens for ") + kPanelToPluginEvent +
                               "; have TryRegisterPlugPlug or RegisterPlugPlug succeed before");
    return {{"panel", "delivered"}};
}

json ChangeService(ScriptHost& host, const json& change) {
    const json& refusals = change.at("refuse");
    if (!refusals.is_number_unsigned())
        throw std::invalid_argument("\"refuse\" takes the number of registrations to refuse");
    host.panels.RefuseNext(refusals.get<uint32_t>());
    return {{"plugPlug", change}};
}

json Answer(ScriptHost& host, const std::string& line) {
    const json request = json::parse(line);
    if (request.contains("panel"))
        return SendPanelMessage(host, request["panel"]);
    if (request.contains("plugPlug"))
        return ChangeService(host, request["plugPlug"]);
    if (request.contains("call"))
        return MakeCall(host, request);
    throw std::invalid_argument("a line is a JSON object with \"call\", \"panel\" or \"plugPlug\"");
}

}  // namespace

int RunScript(const HostOptions& options) {
    ScriptHost host{options};
    std::string error;
    if (!host.core.Load(options.corePath, error)) {
        PrintError("cannot load the core: " + error + "; name its library with --core");
        return exit_status::kFailed;
    }
    int status = exit_status::kDone;
    for (std::string line; std::getline(std::cin, line);) {
        if (line.find_first_not_of(" \t\r") == std::string::npos)
            continue;
        try {
            PrintAnswer(Answer(host, line));
        } catch (const std::exception& exception) {
            PrintAnswer(json{{"error", exception.what()}, {"line", line}});
            status = exit_status::kFailed;
        }
    }
    // A host that ends quits the core properly, also when the script did not say so.
    host.core.TerminatePluginCoreInterface();
    return status;
}

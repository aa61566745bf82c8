#include <iostream>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

#include "Commands.h"
#include "Output.h"
#include "PanelEventService.h"
#include "ScriptCall.h"

namespace {

using nlohmann::json;

template <class Answer>
void PrintAnswer(const Answer& answer) {
    PrintJson(answer.dump(-1, ' ', false, json::error_handler_t::replace));
    std::fflush(stdout);
}

/// What the core tells panels, with the members of the message in their order.
void PrintEvent(const PlugPlugEvent& event) {
    nlohmann::ordered_json line{{"event", event.type}};
    const std::string data = event.data != nullptr ? event.data : "";
    const auto message = nlohmann::ordered_json::parse(data, nullptr, false);
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

json MakeCall(ScriptHost& host, const json& request) {
    const std::string name = request.at("call").get<std::string>();
    const Caller caller = FindCaller(name);
    if (caller == nullptr)
        throw std::invalid_argument("there is no call named " + name);
    Call call{host.core, host.options, host.panels, Arguments(request.value("args", json::object()))};
    const std::optional<uint32_t> code = caller(call);
    json answer{{"call", name}, {"out", std::move(call.out)}};
    if (code) {
        answer["code"] = *code;
        answer["codeName"] = ResultName(*code);
    }
    return answer;
}

/// A string is sent as it is, so that a script can send what is not JSON.
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

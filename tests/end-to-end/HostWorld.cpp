#include "HostWorld.h"

#include "PanelSchemas.h"
#include "platform/Environment.h"
#include "platform/Utf8Path.h"

namespace {

void ExpectBySchema(panel_schemas::Direction direction, const json& message) {
    if (HasSources()) {
        EXPECT_EQ(panel_schemas::FaultsOf(direction, message), "");
    }
}

}  // namespace

HostWorld::~HostWorld() {
    // Also the agents that hosts started again.
    if (const platform::ProcessId agent = Agent())
        KillAgent();
}

void HostWorld::AddFonts(const std::vector<std::string>& postScriptNames) {
    std::vector<std::string> command{"add"};
    for (const std::string& name : postScriptNames)
        command.push_back(mWorld.WriteFont(name));
    ASSERT_EQ(mWorld.Run(command).status, 0);
    ASSERT_EQ(mWorld.Run({"launch-info"}).status, 0);
}

std::string HostWorld::WriteDocument(const std::string& name,
                                     const std::vector<std::string>& postScriptNames) {
    std::string content = "%PDF-1.4\n";
    for (const std::string& font : postScriptNames)
        content += "<< /Type /FontDescriptor /FontName /ABCDEF+" + font + " /Flags 4 >>\n";
    return mWorld.Write(name, content);
}

int HostWorld::Pellwick(const std::string& words) const {
    return mWorld.Run(pellwick::test::WordsOf(words)).status;
}

ProgramResult HostWorld::RunHost(std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), BuiltFile(HOST_PROGRAM));
    return TestProcess(arguments).Finish();
}

platform::ProcessId HostWorld::Agent() const {
    const ProgramResult result = mWorld.Run({"status", "--no-start", "--json"});
    return result.status == 0 ? json::parse(result.output).at("process").get<platform::ProcessId>() : 0;
}

void HostWorld::KillAgent() const {
    const platform::ProcessId agent = Agent();
    ASSERT_NE(agent, 0);
    KillProcess(agent);
    ASSERT_TRUE(Eventually([&] { return platform::ProcessStartTime(agent) == 0; }));
}

void HostWorld::RemoveLaunchInformation() const {
    std::filesystem::remove(platform::Utf8Path(Path("data/Vantorix/com.vantorix.Pellwick-LaunchInfo.conf")));
}

int CountOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

int NumberFromEnvironment(const char* variable, int otherwise) {
    const std::string text = platform::EnvironmentVariable(variable);
    return text.empty() ? otherwise : std::stoi(text);
}

ScriptedHost::ScriptedHost() : mProcess({BuiltFile(HOST_PROGRAM), "script"}) {}

json ScriptedHost::Exchange(const json& line) {
    mProcess.WriteLine(line.dump());
    for (;;) {
        json answer = json::parse(mProcess.ReadLine(), nullptr, false);
        if (!answer.contains("event"))
            return answer;
        EXPECT_EQ(answer["event"], "com.vantorix.PluginToPanel");
        ExpectBySchema(panel_schemas::Direction::kToPanel, answer["message"]);
        mPanelMessages.push_back(answer["message"]);
    }
}

json ScriptedHost::Call(const std::string& name, const json& arguments) {
    const json answer = Exchange({{"call", name}, {"args", arguments}});
    EXPECT_EQ(answer.value("call", ""), name) << answer;
    return answer;
}

std::vector<json> ScriptedHost::Panel(const json& message) {
    if (message.is_object())
        ExpectBySchema(panel_schemas::Direction::kToPlugin, message);
    std::vector<json> earlier = TakePanelMessages();
    const json answer = Exchange({{"panel", message}});
    EXPECT_EQ(answer, (json{{"panel", "delivered"}}));
    return std::exchange(mPanelMessages, std::move(earlier));
}

void ScriptedHost::Start() {
    ASSERT_EQ(Call("InitializePluginCoreInterface")["code"], 0);
}

uint32_t ScriptedHost::Open(const std::string& path) {
    return Call("HandleOpenExistingDocument", {{"path", path}})["code"];
}

uint32_t ScriptedHost::Close(const std::string& path) {
    return Call("HandleCloseDocument", {{"path", path}})["code"];
}

void ScriptedHost::SetPreference(const std::string& key, int value) {
    ASSERT_EQ(Call("SetPreference", {{"key", key}, {"value", std::to_string(value)}})["code"], 0);
}

bool ScriptedHost::IdleUntilTraced(const HostWorld& world, const std::string& text) {
    return Eventually([&] {
        Call("IdleEvent");
        return world.Trace().find(text) != std::string::npos;
    });
}

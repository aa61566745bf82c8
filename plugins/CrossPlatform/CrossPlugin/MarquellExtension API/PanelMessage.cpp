#include "PanelMessage.h"

#include <exception>

#include "PanelLog.h"

using namespace panel_messages;

PanelMessage::PanelMessage(const MessageID& id) {
    mDocument.load_map();
    mRoot.mValue = mDocument.root();
    Check(GJSONUtils::SetValueForKey(id.number, kMessageIDKey.text, mRoot.mValue, mRoot.mAdded),
          "SetValueForKey", {id.name, kMessageIDKey.name, "root", "jsonValue"});
}

void PanelMessage::Check(ErrorCode code, const char* function, std::initializer_list<const char*> arguments) {
    if (code == CoreErrorCodes::kSuccess)
        return;
    mFailure = code;
    std::string expression = std::string("GJSONUtils::") + function;
    const char* separator = "(";
    for (const char* argument : arguments) {
        expression += separator;
        expression += argument;
        separator = ", ";
    }
    ReportFailure(kLogCategory, {(expression + ")").c_str(), __FILE__, __LINE__}, code);
}

PanelMessage::Node PanelMessage::Node::AddArray(const Key& key, const char* name) {
    Node added(mMessage, name);
    if (!mMessage.HasFailed())
        mMessage.Check(GJSONUtils::AddArrayForKey(key.text, mValue, added.mValue), "AddArrayForKey",
                       {key.name, mName, name});
    return added;
}

PanelMessage::Node PanelMessage::Node::AddMap(const Key& key, const char* name) {
    Node added(mMessage, name);
    if (!mMessage.HasFailed())
        mMessage.Check(GJSONUtils::AddMapForKey(key.text, mValue, added.mValue), "AddMapForKey",
                       {key.name, mName, name});
    return added;
}

PanelMessage::Node PanelMessage::Node::AddMap(const char* name) {
    Node added(mMessage, name);
    if (!mMessage.HasFailed())
        mMessage.Check(GJSONUtils::AddMapToArray(mValue, added.mValue), "AddMapToArray", {mName, name});
    return added;
}

ErrorCode PanelMessage::Write(std::string& text) const {
    if (HasFailed())
        return mFailure;
    try {
        text = mRoot.mValue.to_json();
        return CoreErrorCodes::kSuccess;
    } catch (const std::exception& exception) {
        GLogger::GetSharedInstance().Log(kLogCategory, GLogger::kError, "Failed to write JSON: %s",
                                         exception.what());
    }
    ReportFailure(kLogCategory, {"GetMessageFromJSONValue(root, responseMessage)", __FILE__, __LINE__},
                  CoreErrorCodes::kInvalidParam);
    return CoreErrorCodes::kInvalidParam;
}

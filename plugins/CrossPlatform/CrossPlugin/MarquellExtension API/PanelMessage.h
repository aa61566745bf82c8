// Reading the requests of panels and composing what they are told.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>

#include "FailureReport.h"
#include "GJSONUtils.h"
#include "PanelMessages.h"

/// A message while it is composed. The first thing that cannot be added is reported; from then on nothing is
/// added, and the message cannot be sent.
class PanelMessage {
public:
    explicit PanelMessage(const panel_messages::MessageID& id);
    PanelMessage(const PanelMessage&) = delete;
    PanelMessage& operator=(const PanelMessage&) = delete;

    /// An object or an array within the message, which it must not outlive.
    class Node {
    public:
        template <class Value>
        Node& Set(const panel_messages::Key& key, const Value& value) {
            if (!mMessage.HasFailed())
                mMessage.Check(GJSONUtils::SetValueForKey(value, key.text, mValue, mAdded), "SetValueForKey",
                               {key.text, key.name, mName, "jsonValue"});
            return *this;
        }
        /// `name`: how the added one stands in failure reports.
        Node AddArray(const panel_messages::Key& key, const char* name = "jsonArray");
        Node AddMap(const panel_messages::Key& key, const char* name);
        /// Into an array.
        Node AddMap(const char* name);
        template <class Value>
        void Add(const Value& value) {
            if (!mMessage.HasFailed())
                mMessage.Check(GJSONUtils::AddValueToArray(mValue, value, mAdded), "AddValueToArray",
                               {mName, "value", "jsonValue"});
        }

    private:
        friend class PanelMessage;
        Node(PanelMessage& message, const char* name) : mMessage(message), mName(name) {}

        PanelMessage& mMessage;
        const char* mName;
        JSONValue mValue;
        JSONValue mAdded;
    };

    Node& Root() { return mRoot; }
    template <class Value>
    PanelMessage& Set(const panel_messages::Key& key, const Value& value) {
        mRoot.Set(key, value);
        return *this;
    }

    bool HasFailed() const { return mFailure != CoreErrorCodes::kSuccess; }
    /// The message as text; the code of what could not be added, with `text` untouched.
    ErrorCode Write(std::string& text) const;

private:
    /// Reports a failure of the function with those arguments, and keeps it.
    void Check(ErrorCode code, const char* function, std::initializer_list<const char*> arguments);

    JSONObject mDocument;
    ErrorCode mFailure = CoreErrorCodes::kSuccess;
    Node mRoot{*this, "root"};
};

/// Reads a member of a request; a failure is reported.
template <class Value>
ErrorCode ReadMember(const JSONValue& request, const panel_messages::Key& key, Value& value) {
    const ErrorCode code = GJSONUtils::GetValueForKey(request, key.text, value);
    if (code != CoreErrorCodes::kSuccess) {
        const std::string expression =
            std::string("GJSONUtils::GetValueForKey(jsonValue, ") + key.name + ", " + key.text + ")";
        ReportFailure("Miscellaneous", {expression.c_str(), __FILE__, __LINE__}, code);
    }
    return code;
}

/// Reads several, key after key, up to the first that fails.
template <class Value, class... Rest>
ErrorCode ReadMember(const JSONValue& request, const panel_messages::Key& key, Value& value, Rest&... rest) {
    const ErrorCode code = ReadMember(request, key, value);
    return code == CoreErrorCodes::kSuccess ? ReadMember(request, rest...) : code;
}

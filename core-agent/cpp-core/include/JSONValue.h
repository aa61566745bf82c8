// JSON documents as trees of nodes (RFC 8259), parsed and kept by YAJL: what panel messages are read from and
// built with. The tree is worked on where it stands; nothing is copied.
//
// Reads of the wrong kind and texts that cannot be parsed or written throw std::runtime_error. The functions
// of GJSONUtils answer with error codes instead.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

struct yajl_val_s;

/// A handle to one node. Copied freely, owns nothing: valid while its JSONObject lives and holds the same
/// tree.
class JSONValue {
public:
    JSONValue() = default;
    JSONValue(std::string name, yajl_val_s* node) : mName(std::move(name)), mNode(node) {}

    /// The key under which the node was found; "root" for the root.
    const std::string& name() const { return mName; }

    bool is_string() const;
    /// A number that was written as an integer of at most 64 bits. 3.0 is none, and the least of them, -2^63,
    /// is read as a double.
    bool is_int() const;
    /// A number that a double can hold, integers among them.
    bool is_double() const;
    bool is_bool() const;
    bool is_array() const;
    bool is_map() const;

    std::string as_string() const;
    int64_t as_int64() const;
    double as_double() const;
    bool as_bool() const;
    /// The elements, in order.
    std::vector<JSONValue> as_array() const;
    /// The members with their keys, in order.
    std::vector<std::pair<std::string, JSONValue>> as_map() const;

    /// Looks `key` up among the members of this object; the first one counts. False, with `value` untouched,
    /// when it is absent or this is not an object.
    bool find(const std::string& key, JSONValue& value) const;

    // Adds a member to this object. False, with the object as it was, when this is not an object or memory runs
    // out. `newValue` is the node that was made. Texts are UTF-8; a zero byte in one becomes U+FFFD.
    bool add_string(const std::string& key, const std::string& value, JSONValue& newValue);
    bool add_int64(const std::string& key, int64_t value, JSONValue& newValue);
    bool add_double(const std::string& key, double value, JSONValue& newValue);
    bool add_bool(const std::string& key, bool value, JSONValue& newValue);
    bool add_array(const std::string& key, JSONValue& newValue);
    bool add_map(const std::string& key, JSONValue& newValue);

    // The same for elements, appended to this array.
    bool add_string(const std::string& value, JSONValue& newValue);
    bool add_int64(int64_t value, JSONValue& newValue);
    bool add_double(double value, JSONValue& newValue);
    bool add_bool(bool value, JSONValue& newValue);
    bool add_array(JSONValue& newValue);
    bool add_map(JSONValue& newValue);

    /// This node and what is below it as compact text. Throws when a text in it is not well-formed UTF-8,
    /// when a number is infinite or none, and when it is nested deeper than YAJL can write.
    std::string to_json() const;

private:
    friend class JSONObject;

    bool Append(const std::string& key, yajl_val_s* node, JSONValue& newValue);
    bool Append(yajl_val_s* node, JSONValue& newValue);

    std::string mName;
    yajl_val_s* mNode = nullptr;
};

/// Owns a parsed document.
class JSONObject {
public:
    /// Replaces the tree by that of `text`. Throws when it is not JSON, holds a zero character or half of a
    /// surrogate pair, or is nested too deep to be taken apart again; no tree is held then. The bare text
    /// "OK", with which panels acknowledge, holds no tree either but does not throw.
    void load(const std::string& text);

    /// Replaces the tree by an empty object.
    void load_map();

    /// The node named "root". Throws when no tree is held.
    JSONValue root() const;

    /// The node that the keys lead to from the root, named by the keys without anything between them. Throws
    /// when no tree is held and when the path is absent.
    JSONValue get(const std::vector<std::string>& path) const;

private:
    struct TreeDeleter {
        void operator()(yajl_val_s* node) const;
    };

    std::unique_ptr<yajl_val_s, TreeDeleter> mTree;
};

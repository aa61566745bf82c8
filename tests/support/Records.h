// CoreFoundation objects, made with what is in them.
#pragma once

#include <CoreFoundation++/CFRef.h>

/// A dictionary of keys and values, one after the other.
template <class... Rest>
CFRef<CFMutableDictionaryRef> Record(const Rest&... keysAndValues) {
    CFRef<CFMutableDictionaryRef> record = cf::MutableDictionary();
    const auto set = [&](const auto& self, const char* key, const auto& value, const auto&... rest) {
        cf::Set(record, key, value);
        if constexpr (sizeof...(rest) > 0)
            self(self, rest...);
    };
    if constexpr (sizeof...(keysAndValues) > 0)
        set(set, keysAndValues...);
    return record;
}

/// An array of values of any kinds.
template <class... Values>
CFRef<CFMutableArrayRef> List(const Values&... values) {
    CFRef<CFMutableArrayRef> list = cf::MutableArray();
    (cf::Append(list, values), ...);
    return list;
}

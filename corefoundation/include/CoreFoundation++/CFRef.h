// CoreFoundation objects in C++: an owner for each reference and short forms of what is done with them all
// the time. Only the public C interface is used, so this works with any CoreFoundation. Threads: as for the
// objects themselves.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <concepts>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

// Owns one reference to an object, or none. T is a reference type such as CFStringRef or CFMutableArrayRef.
template <class T>
class [[nodiscard]] CFRef {
public:
    CFRef() = default;
    CFRef(std::nullptr_t) {}
    CFRef(const CFRef& other) : CFRef(Retain(other.mObject)) {}
    CFRef(CFRef&& other) noexcept : mObject(other.release()) {}
    // A CFRef<CFMutableArrayRef> becomes a CFRef<CFArrayRef>, and each a CFRef<CFTypeRef>.
    template <class Other>
    requires std::convertible_to<Other, T> CFRef(CFRef<Other> other)
    noexcept : mObject(other.release()) {}
    ~CFRef() { reset(); }

    CFRef& operator=(CFRef other) noexcept {
        std::swap(mObject, other.mObject);
        return *this;
    }

    // Takes over a reference that the caller owns: the result of a Create or Copy function. May be null.
    static CFRef Adopt(T object) noexcept {
        CFRef ref;
        ref.mObject = object;
        return ref;
    }
    // Becomes one more owner of an object that is only lent: the result of a Get function. May be null.
    static CFRef Retain(T object) noexcept {
        if (object != nullptr)
            CFRetain(object);
        return Adopt(object);
    }

    T get() const noexcept { return mObject; }
    explicit operator bool() const noexcept { return mObject != nullptr; }

    // Hands the reference to the caller, who owns it from now on.
    [[nodiscard]] T release() noexcept { return std::exchange(mObject, nullptr); }
    void reset() noexcept {
        if (const T object = release())
            CFRelease(object);
    }

private:
    T mObject = nullptr;
};

template <class T>
CFRef<T> AdoptCF(T object) noexcept {
    return CFRef<T>::Adopt(object);
}

template <class T>
CFRef<T> RetainCF(T object) noexcept {
    return CFRef<T>::Retain(object);
}

namespace cf {

// TypeID<CFStringRef>() and so on. A mutable object has the type of its immutable form and cannot be told
// from it.
template <class T>
CFTypeID TypeID() = delete;
template <>
inline CFTypeID TypeID<CFStringRef>() {
    return CFStringGetTypeID();
}
template <>
inline CFTypeID TypeID<CFArrayRef>() {
    return CFArrayGetTypeID();
}
template <>
inline CFTypeID TypeID<CFDictionaryRef>() {
    return CFDictionaryGetTypeID();
}
template <>
inline CFTypeID TypeID<CFNumberRef>() {
    return CFNumberGetTypeID();
}
template <>
inline CFTypeID TypeID<CFBooleanRef>() {
    return CFBooleanGetTypeID();
}
template <>
inline CFTypeID TypeID<CFDataRef>() {
    return CFDataGetTypeID();
}
template <>
inline CFTypeID TypeID<CFUUIDRef>() {
    return CFUUIDGetTypeID();
}

// The object as a T, lent; null when it is null or of another type.
template <class T>
T As(CFTypeRef object) {
    return object != nullptr && CFGetTypeID(object) == TypeID<T>() ? static_cast<T>(object) : nullptr;
}

template <>
inline CFTypeRef As<CFTypeRef>(CFTypeRef object) {
    return object;
}

// Null when the text is not valid UTF-8.
inline CFRef<CFStringRef> String(std::string_view utf8) {
    return AdoptCF(CFStringCreateWithBytes(kCFAllocatorDefault, reinterpret_cast<const UInt8*>(utf8.data()),
                                           static_cast<CFIndex>(utf8.size()), kCFStringEncodingUTF8, false));
}

// Empty for null.
inline std::string ToUtf8(CFStringRef string) {
    if (string == nullptr)
        return {};
    const CFRange whole = CFRangeMake(0, CFStringGetLength(string));
    const CFIndex size = CFStringGetMaximumSizeForEncoding(whole.length, kCFStringEncodingUTF8);
    std::string text(static_cast<size_t>(size), '\0');
    CFIndex used = 0;
    CFStringGetBytes(string, whole, kCFStringEncodingUTF8, 0, false, reinterpret_cast<UInt8*>(text.data()),
                     size, &used);
    text.resize(static_cast<size_t>(used));
    return text;
}

inline CFRef<CFNumberRef> Number(int64_t value) {
    return AdoptCF(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt64Type, &value));
}

inline CFRef<CFNumberRef> RealNumber(double value) {
    return AdoptCF(CFNumberCreate(kCFAllocatorDefault, kCFNumberFloat64Type, &value));
}

inline CFBooleanRef Bool(bool value) {
    return value ? kCFBooleanTrue : kCFBooleanFalse;
}

// The value of a number that is whole and in range, or 1 and 0 for true and false; nothing for any other
// object.
inline std::optional<int64_t> ToInt64(CFTypeRef object) {
    int64_t value = 0;
    if (const auto number = As<CFNumberRef>(object)) {
        const bool isExact = CFNumberGetValue(number, kCFNumberSInt64Type, &value);
        return isExact ? std::optional(value) : std::nullopt;
    }
    const auto boolean = As<CFBooleanRef>(object);
    return boolean != nullptr ? std::optional<int64_t>(CFBooleanGetValue(boolean)) : std::nullopt;
}

// The value of a truth value, or whether a whole number is other than 0; nothing for any other object.
inline std::optional<bool> ToBool(CFTypeRef object) {
    const auto value = ToInt64(object);
    return value ? std::optional(*value != 0) : std::nullopt;
}

// The nearest double of a number; nothing for any other object.
inline std::optional<double> ToDouble(CFTypeRef object) {
    const auto number = As<CFNumberRef>(object);
    double value = 0;
    if (number == nullptr)
        return std::nullopt;
    CFNumberGetValue(number, kCFNumberFloat64Type, &value);
    return value;
}

inline CFRef<CFMutableArrayRef> MutableArray() {
    return AdoptCF(CFArrayCreateMutable(kCFAllocatorDefault, 0, &kCFTypeArrayCallBacks));
}

inline CFRef<CFMutableDictionaryRef> MutableDictionary() {
    return AdoptCF(CFDictionaryCreateMutable(kCFAllocatorDefault, 0, &kCFTypeDictionaryKeyCallBacks,
                                             &kCFTypeDictionaryValueCallBacks));
}

// Whatever a collection is asked to hold, as an object: texts, numbers, truth values, and objects themselves.
inline CFRef<CFTypeRef> Object(std::string_view utf8) {
    return String(utf8);
}
inline CFRef<CFTypeRef> Object(const std::string& utf8) {
    return String(utf8);
}
inline CFRef<CFTypeRef> Object(const char* utf8) {
    return utf8 != nullptr ? String(utf8) : nullptr;
}
inline CFRef<CFTypeRef> Object(std::same_as<bool> auto value) {
    return RetainCF<CFTypeRef>(Bool(value));
}
template <std::integral T>
requires(!std::same_as<T, bool>) CFRef<CFTypeRef> Object(T value) {
    // What no int64_t can hold has no object.
    return std::in_range<int64_t>(value) ? CFRef<CFTypeRef>(Number(static_cast<int64_t>(value))) : nullptr;
}
inline CFRef<CFTypeRef> Object(std::floating_point auto value) {
    return RealNumber(value);
}
template <class T>
CFRef<CFTypeRef> Object(const CFRef<T>& object) {
    return object;
}
template <class T>
requires(std::is_class_v<T> || std::is_void_v<T>) CFRef<CFTypeRef> Object(T* object) {
    return RetainCF<CFTypeRef>(object);
}

// A dictionary key: a string object, or UTF-8 text from which one is made for the time of the call.
class Key {
public:
    Key(CFStringRef string) : mString(RetainCF(string)) {}
    Key(const CFRef<CFStringRef>& string) : mString(string) {}
    Key(std::string_view utf8) : mString(String(utf8)) {}
    Key(const std::string& utf8) : mString(String(utf8)) {}
    Key(const char* utf8) : mString(String(utf8)) {}
    CFStringRef get() const { return mString.get(); }

private:
    CFRef<CFStringRef> mString;
};

// Stores value under key; a null value, like a text that is not UTF-8, removes the key.
template <class Value>
void Set(CFMutableDictionaryRef dictionary, const Key& key, const Value& value) {
    const CFRef<CFTypeRef> object = Object(value);
    if (key.get() != nullptr && object)
        CFDictionarySetValue(dictionary, key.get(), object.get());
    else if (key.get() != nullptr)
        CFDictionaryRemoveValue(dictionary, key.get());
}
template <class Value>
void Set(const CFRef<CFMutableDictionaryRef>& dictionary, const Key& key, const Value& value) {
    Set(dictionary.get(), key, value);
}

// Appends value, unless it is null.
template <class Value>
void Append(CFMutableArrayRef array, const Value& value) {
    if (const CFRef<CFTypeRef> object = Object(value))
        CFArrayAppendValue(array, object.get());
}
template <class Value>
void Append(const CFRef<CFMutableArrayRef>& array, const Value& value) {
    Append(array.get(), value);
}

// The numbers, in order.
template <std::integral T>
CFRef<CFMutableArrayRef> NumberArray(const std::vector<T>& numbers) {
    CFRef<CFMutableArrayRef> array = MutableArray();
    for (const T number : numbers)
        Append(array, number);
    return array;
}

// 0 for null.
inline CFIndex Count(CFArrayRef array) {
    return array != nullptr ? CFArrayGetCount(array) : 0;
}
inline CFIndex Count(CFDictionaryRef dictionary) {
    return dictionary != nullptr ? CFDictionaryGetCount(dictionary) : 0;
}

// The value under key, lent; null when dictionary is null or the key is missing.
inline CFTypeRef Get(CFDictionaryRef dictionary, const Key& key) {
    return dictionary != nullptr && key.get() != nullptr ? CFDictionaryGetValue(dictionary, key.get())
                                                         : nullptr;
}

// The value as a T, lent; null also when it is of another type.
template <class T>
T Get(CFDictionaryRef dictionary, const Key& key) {
    return As<T>(Get(dictionary, key));
}
template <class T>
T Get(CFArrayRef array, CFIndex index) {
    return index >= 0 && index < Count(array) ? As<T>(CFArrayGetValueAtIndex(array, index)) : nullptr;
}

// The elements as T's, in order, lent; null for those of another type. Nothing for null. For loops that do
// not change the array:
//
//     for (const CFDictionaryRef font : cf::Elements<CFDictionaryRef>(fonts))
template <class T>
class Elements {
public:
    explicit Elements(CFArrayRef array) : mArray(array) {}

    class Iterator {
    public:
        Iterator(CFArrayRef array, CFIndex index) : mArray(array), mIndex(index) {}
        T operator*() const { return Get<T>(mArray, mIndex); }
        Iterator& operator++() {
            ++mIndex;
            return *this;
        }
        bool operator==(const Iterator&) const = default;

    private:
        CFArrayRef mArray;
        CFIndex mIndex;
    };
    Iterator begin() const { return {mArray, 0}; }
    Iterator end() const { return {mArray, Count(mArray)}; }

private:
    CFArrayRef mArray;
};

// Empty when there is no string under key.
inline std::string GetString(CFDictionaryRef dictionary, const Key& key) {
    return ToUtf8(Get<CFStringRef>(dictionary, key));
}
inline std::optional<int64_t> GetInt64(CFDictionaryRef dictionary, const Key& key) {
    return ToInt64(Get(dictionary, key));
}
inline std::optional<bool> GetBool(CFDictionaryRef dictionary, const Key& key) {
    return ToBool(Get(dictionary, key));
}
inline CFArrayRef GetArray(CFDictionaryRef dictionary, const Key& key) {
    return Get<CFArrayRef>(dictionary, key);
}
inline CFDictionaryRef GetDictionary(CFDictionaryRef dictionary, const Key& key) {
    return Get<CFDictionaryRef>(dictionary, key);
}

}  // namespace cf

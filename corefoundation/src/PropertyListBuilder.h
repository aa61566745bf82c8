// Makes the objects of a property list from the elements of its XML form, whoever reads the XML.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "CoreFoundation++/CFRef.h"

namespace corefoundation {

// What makes a document no property list, in words for the user.
class PropertyListError : public std::runtime_error {
    using runtime_error::runtime_error;
};

// All functions throw PropertyListError, or std::bad_alloc.
class PropertyListBuilder {
public:
    explicit PropertyListBuilder(CFOptionFlags mutability) : mMutability(mutability) {}

    void StartElement(std::string_view name);
    void Text(std::string_view utf8);
    void EndElement();
    CFRef<CFTypeRef> Finish();

    enum class Kind : uint8_t {
        kPlist,
        kDict,
        kArray,
        kKey,
        kString,
        kInteger,
        kReal,
        kTrue,
        kFalse,
        kData,
        kDate
    };

private:
    struct Element {
        Kind kind;
        CFRef<CFMutableArrayRef> array;
        CFRef<CFMutableDictionaryRef> dictionary;
        CFRef<CFStringRef> key;  // of the dictionary, waiting for its value
        std::string text;
    };

    void RequirePlace(Kind kind) const;
    CFRef<CFTypeRef> ValueOf(Element& element) const;
    CFRef<CFTypeRef> FinishedArray(const Element& element) const;
    CFRef<CFTypeRef> FinishedDictionary(const Element& element) const;
    CFRef<CFTypeRef> DataFrom(const std::string& text) const;
    void Store(CFRef<CFTypeRef> value);

    const CFOptionFlags mMutability;
    std::vector<Element> mOpen;  // from the outermost element inwards
    CFRef<CFTypeRef> mRoot;
};

}  // namespace corefoundation

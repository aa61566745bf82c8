#include <libxml/SAX2.h>
#include <libxml/parser.h>

#include <algorithm>
#include <memory>
#include <span>

#include "CoreFoundation/CFPropertyList.h"
#include "DataObject.h"
#include "Limits.h"
#include "PropertyListBuilder.h"

using namespace corefoundation;

namespace {

// One run of the XML parser. The document reaches it in pieces, and what it finds reaches the builder. No
// tree is made, and the first entity that is declared ends it, so there is none to expand.
class Reader {
public:
    explicit Reader(CFOptionFlags mutability);

    CFRef<CFTypeRef> Read(std::span<const UInt8> document);

private:
    struct FreeParser {
        void operator()(xmlParserCtxt* parser) const {
            xmlFreeDoc(
                parser->myDoc);  // the parser made one of its own if it met an entity, and leaves it to us
            xmlFreeParserCtxt(parser);
        }
    };

    static xmlSAXHandler Handlers();
    void Fail(const std::string& message, int line);
    // Runs a step of the builder on behalf of the parser, which no exception may cross.
    template <class Step>
    static void Run(void* reader, Step&& step);

    PropertyListBuilder mBuilder;
    std::string mError;  // the first one
    std::unique_ptr<xmlParserCtxt, FreeParser> mParser;
};

std::string_view View(const xmlChar* text, int length) {
    return {reinterpret_cast<const char*>(text), static_cast<size_t>(length)};
}

Reader::Reader(CFOptionFlags mutability) : mBuilder(mutability) {
    xmlSAXHandler handlers = Handlers();
    mParser.reset(xmlCreatePushParserCtxt(&handlers, this, nullptr, 0, nullptr));
    if (!mParser)
        throw std::bad_alloc();
    xmlCtxtUseOptions(mParser.get(), XML_PARSE_NONET);
}

template <class Step>
void Reader::Run(void* reader, Step&& step) {
    auto& self = *static_cast<Reader*>(reader);
    try {
        step(self.mBuilder);
    } catch (const std::exception& error) {
        self.Fail(error.what(), xmlSAX2GetLineNumber(self.mParser.get()));
    }
}

xmlSAXHandler Reader::Handlers() {
    xmlSAXHandler handlers{};
    handlers.initialized = XML_SAX2_MAGIC;
    handlers.startElementNs = [](void* reader, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                 const xmlChar**, int, int, const xmlChar**) {
        Run(reader, [&](PropertyListBuilder& builder) { builder.StartElement(View(name, xmlStrlen(name))); });
    };
    handlers.endElementNs = [](void* reader, const xmlChar*, const xmlChar*, const xmlChar*) {
        Run(reader, [](PropertyListBuilder& builder) { builder.EndElement(); });
    };
    handlers.characters = [](void* reader, const xmlChar* text, int length) {
        Run(reader, [&](PropertyListBuilder& builder) { builder.Text(View(text, length)); });
    };
    handlers.ignorableWhitespace = handlers.characters;
    handlers.cdataBlock = handlers.characters;
    handlers.entityDecl = [](void* reader, const xmlChar*, int, const xmlChar*, const xmlChar*, xmlChar*) {
        Run(reader, [](PropertyListBuilder&) {
            throw PropertyListError("a property list cannot declare entities of its own");
        });
    };
    // auto, since versions of the library differ in whether the error is const.
    handlers.serror = [](void* reader, auto* error) {
        if (error->level >= XML_ERR_ERROR)
            static_cast<Reader*>(reader)->Fail(error->message != nullptr ? error->message : "invalid XML",
                                               error->line);
    };
    return handlers;
}

void Reader::Fail(const std::string& message, int line) {
    if (mError.empty())
        mError = "line " + std::to_string(line) + ": " + message.substr(0, message.find('\n'));
    xmlStopParser(mParser.get());
}

CFRef<CFTypeRef> Reader::Read(std::span<const UInt8> document) {
    // The parser looks far ahead in what it is given at once, and refuses to when that is large.
    constexpr size_t kPieceBytes = 64U << 10;
    while (!document.empty() && mError.empty()) {
        const auto piece = document.first(std::min(kPieceBytes, document.size()));
        document = document.subspan(piece.size());
        xmlParseChunk(mParser.get(), reinterpret_cast<const char*>(piece.data()),
                      static_cast<int>(piece.size()), 0);
    }
    if (mError.empty())
        xmlParseChunk(mParser.get(), nullptr, 0, 1);
    if (!mError.empty() || mParser->wellFormed == 0)
        throw PropertyListError(!mError.empty() ? mError : "invalid XML");
    return mBuilder.Finish();
}

CFRef<CFTypeRef> ReadPropertyList(std::span<const UInt8> document, CFOptionFlags mutability) {
    constexpr std::string_view kBinaryMagic = "bplist";
    if (document.size() > kMaximumPropertyListBytes) {
        throw PropertyListError("the property list is larger than " +
                                std::to_string(kMaximumPropertyListBytes >> 20) + " MiB");
    }
    if (document.size() >= kBinaryMagic.size() &&
        std::equal(kBinaryMagic.begin(), kBinaryMagic.end(), document.begin()))
        throw PropertyListError("binary property lists are not supported, only XML ones");
    return Reader(mutability).Read(document);
}

}  // namespace

CFPropertyListRef CFPropertyListCreateFromXMLData(CFAllocatorRef, CFDataRef data,
                                                  CFOptionFlags mutabilityOption, CFStringRef* errorString) {
    CFRef<CFStringRef> error;
    const CFData* checked = Check<CFData>(data);
    const auto result = Guarded<CFPropertyListRef>(nullptr, [&]() -> CFPropertyListRef {
        try {
            return checked != nullptr ? ReadPropertyList(checked->Bytes(), mutabilityOption).release()
                                      : nullptr;
        } catch (const std::exception& failure) {
            error = cf::String(failure.what());
            return nullptr;
        }
    });
    if (result == nullptr && !error)
        error = RetainCF(CFSTR("the property list cannot be read"));
    if (errorString != nullptr)
        *errorString = error.release();
    return result;
}

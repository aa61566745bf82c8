#include "XmlParser.h"

#include <algorithm>
#include <new>

#include "DocumentLimits.h"
#include "ReadProblem.h"

namespace documents {
namespace {

std::string_view View(const xmlChar* text) {
    return text == nullptr ? std::string_view() : std::string_view(reinterpret_cast<const char*>(text));
}

std::string_view View(const xmlChar* text, ptrdiff_t length) {
    return {reinterpret_cast<const char*>(text), static_cast<size_t>(length)};
}

/// The encoding that an XML declaration names; empty without one.
std::string DeclaredEncoding(std::string_view document) {
    if (!document.starts_with("<?xml"))
        return {};
    const std::string_view declaration = document.substr(0, document.find("?>"));
    const size_t name = declaration.find("encoding");
    const size_t begin = declaration.find_first_of("\"'", name);
    if (name == std::string_view::npos || begin == std::string_view::npos)
        return {};
    std::string encoding(
        declaration.substr(begin + 1, declaration.find(declaration[begin], begin + 1) - begin - 1));
    std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                   [](char letter) { return letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter; });
    return encoding;
}

/// Others need tables that are files of their own, which a confined process cannot open.
void RequireBuiltInEncoding(std::string_view document) {
    const std::string encoding = DeclaredEncoding(document);
    for (const char* known :
         {"", "UTF-8", "UTF8", "UTF-16", "UTF-16LE", "UTF-16BE", "ISO-8859-1", "US-ASCII", "ASCII"}) {
        if (encoding == known)
            return;
    }
    throw ReadProblem("is in the encoding " + encoding.substr(0, 40) + "; save it in UTF-8");
}

}  // namespace

std::string_view XmlElement::Value(std::string_view attribute) const {
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const Attribute& each) { return each.name == attribute; });
    return found == attributes.end() ? std::string_view() : found->value;
}

void XmlParser::FreeParser::operator()(xmlParserCtxt* parser) const {
    xmlFreeDoc(parser->myDoc);  // made for the declarations of entities, and left to us
    xmlFreeParserCtxt(parser);
}

XmlParser::XmlParser(XmlListener& listener) : mListener(listener) {
    static const xmlChar kNone[] = "";
    mNothing.type = XML_ENTITY_DECL;
    mNothing.etype = XML_INTERNAL_GENERAL_ENTITY;
    mNothing.name = mNothing.orig = mNothing.content = const_cast<xmlChar*>(kNone);
    xmlSAXHandler handlers = Handlers();
    mParser.reset(xmlCreatePushParserCtxt(&handlers, this, nullptr, 0, nullptr));
    if (!mParser)
        throw std::bad_alloc();
    xmlCtxtUseOptions(mParser.get(), XML_PARSE_NONET);
}

template <class Step>
void XmlParser::Run(void* self, const Step& step) {
    auto& parser = *static_cast<XmlParser*>(self);
    if (parser.mFailure)
        return;
    try {
        step(parser);
    } catch (...) {
        parser.mFailure = std::current_exception();
        xmlStopParser(parser.mParser.get());
    }
}

xmlSAXHandler XmlParser::Handlers() {
    xmlSAXHandler handlers{};
    handlers.initialized = XML_SAX2_MAGIC;
    handlers.startElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*, int,
                                 const xmlChar**, int count, int, const xmlChar** attributes) {
        Run(self, [&](XmlParser& parser) { parser.Start(name, count, attributes); });
    };
    handlers.endElementNs = [](void* self, const xmlChar* name, const xmlChar*, const xmlChar*) {
        Run(self, [&](XmlParser& parser) {
            --parser.mDepth;
            parser.mListener.OnEnd(View(name));
        });
    };
    handlers.characters = [](void* self, const xmlChar* text, int length) {
        Run(self, [&](XmlParser& parser) { parser.mListener.OnText(View(text, length)); });
    };
    handlers.cdataBlock = handlers.characters;
    handlers.getEntity = [](void* self, const xmlChar*) { return &static_cast<XmlParser*>(self)->mNothing; };
    // auto, since versions of the library differ in whether the error is const.
    handlers.serror = [](void* self, auto* error) {
        if (error->level < XML_ERR_FATAL)
            return;
        const std::string message = error->message != nullptr ? error->message : "invalid XML";
        const int line = error->line;
        Run(self, [&](XmlParser&) {
            throw ReadProblem("is damaged: line " + std::to_string(line) + ": " +
                              message.substr(0, message.find('\n')));
        });
    };
    return handlers;
}

void XmlParser::Start(const xmlChar* name, int attributeCount, const xmlChar** attributes) {
    if (++mDepth > kMaxXmlDepth)
        throw ReadProblem("has more than " + std::to_string(kMaxXmlDepth) + " elements within one another");
    XmlElement element{View(name), {}};
    for (int index = 0; index < attributeCount; ++index, attributes += 5)  // name, prefix, URI, begin, end
        element.attributes.push_back(
            {View(attributes[0]), View(attributes[3], attributes[4] - attributes[3])});
    mListener.OnStart(element);
}

void XmlParser::Feed(std::string_view bytes, bool isEnd) {
    xmlParseChunk(mParser.get(), bytes.data(), static_cast<int>(bytes.size()), isEnd ? 1 : 0);
    if (mFailure)
        std::rethrow_exception(mFailure);
}

void XmlParser::Read(std::string_view piece) {
    if (!mHasBegun)
        RequireBuiltInEncoding(piece);
    mHasBegun = true;
    Feed(piece, false);
}

void XmlParser::Finish() {
    Feed({}, true);
    if (mParser->wellFormed == 0)
        throw ReadProblem("is damaged: invalid XML");
}

void ReadXml(std::string_view document, XmlListener& listener) {
    // The parser looks far ahead in what it is given at once, and refuses to when that is large.
    constexpr size_t kPieceSize = size_t{64} << 10;
    XmlParser parser(listener);
    for (; !document.empty(); document.remove_prefix(std::min(kPieceSize, document.size())))
        parser.Read(document.substr(0, kPieceSize));
    parser.Finish();
}

}  // namespace documents

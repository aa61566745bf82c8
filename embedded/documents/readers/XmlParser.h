// XML as a stream of events.
#pragma once

#include <libxml/parser.h>

#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace documents {

/// Names are without prefixes: no two that matter here differ in their namespace alone.
struct XmlElement {
    struct Attribute {
        std::string_view name;
        std::string_view value;
    };
    std::string_view name;
    std::vector<Attribute> attributes;

    /// The first of that name; empty when there is none.
    std::string_view Value(std::string_view attribute) const;
};

/// Hears of a document's content in its order; what it is handed is valid during the call. May throw.
class XmlListener {
public:
    virtual ~XmlListener() = default;
    virtual void OnStart(const XmlElement& element) = 0;
    virtual void OnEnd(std::string_view /*name*/) {}
    virtual void OnText(std::string_view /*text*/) {}
};

/// Reads a document piece by piece, and nothing but it: no network, no other files. Entities of its own stand
/// for nothing, so there is none to expand. Throws ReadProblem, and what the listener throws.
class XmlParser {
public:
    explicit XmlParser(XmlListener& listener);

    void Read(std::string_view piece);
    void Finish();

private:
    struct FreeParser {
        void operator()(xmlParserCtxt* parser) const;
    };
    static xmlSAXHandler Handlers();
    /// Runs a step of the listener on behalf of the parser, which no exception may cross.
    template <class Step>
    static void Run(void* self, const Step& step);
    void Start(const xmlChar* name, int attributeCount, const xmlChar** attributes);
    void Feed(std::string_view bytes, bool isEnd);

    XmlListener& mListener;
    size_t mDepth = 0;
    bool mHasBegun = false;
    std::exception_ptr mFailure;
    xmlEntity mNothing{};  ///< what every entity stands for
    std::unique_ptr<xmlParserCtxt, FreeParser> mParser;
};

/// Reads a document that is in memory.
void ReadXml(std::string_view document, XmlListener& listener);

}  // namespace documents

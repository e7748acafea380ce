#include "documents/xml_reader.h"

#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <string>

namespace {

// The parser's time for a tag grows with the square of its attributes.
constexpr int kMaxAttributes = 20000;

std::string_view View(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

// Turns the parser's calls into the listener's.
class Events {
public:
    explicit Events(MarkupListener& listener) : listener_(listener) {}

    void Start(std::string_view name, const MarkupAttributes& attributes) {
        if (skipped_ > 0 || !listener_.EvElement(name, attributes))
            ++skipped_;
    }
    void End(std::string_view name) {
        if (skipped_ > 0)
            --skipped_;
        else
            listener_.EvElementEnd(name);
    }
    void Text(const xmlChar* text, int length) {
        if (skipped_ == 0 && length > 0)
            listener_.EvText(
                {reinterpret_cast<const char*>(text), static_cast<std::size_t>(length)});
    }

private:
    MarkupListener& listener_;
    int skipped_ = 0;  // how many elements deep in one that is left out
};

// Sees tags with more attributes than anybody writes before the parser does. A quoted value, which
// never holds "<", may be as long as it likes.
class TagWatch {
public:
    bool IsFine(std::string_view bytes) {
        for (const char byte : bytes) {
            if (byte == '<' || (byte == '>' && quote_ == 0)) {
                attributes_ = 0;
                quote_ = 0;
                isOpened_ = byte == '<';
                isInTag_ = false;
            } else if (isOpened_) {
                isOpened_ = false;
                isInTag_ = byte != '!' && byte != '?';
            } else if (isInTag_ && !IsFineInTag(byte)) {
                return false;
            }
        }
        return true;
    }

private:
    bool IsFineInTag(char byte) {
        if (quote_ != 0) {
            quote_ = byte == quote_ ? '\0' : quote_;
            return true;
        }
        if (byte == '"' || byte == '\'')
            quote_ = byte;
        return byte != '=' || ++attributes_ <= kMaxAttributes;
    }

    bool isOpened_ = false;
    bool isInTag_ = false;
    char quote_ = '\0';
    int attributes_ = 0;
};

// An ampersand comes from the parser as a reference, because entities are not replaced.
std::string AttributeValue(std::string_view raw) {
    constexpr std::string_view kAmpersand = "&#38;";
    std::string value;
    for (std::size_t at = raw.find(kAmpersand); at != std::string_view::npos;
         at = raw.find(kAmpersand)) {
        value += raw.substr(0, at + 1);
        raw.remove_prefix(at + kAmpersand.size());
    }
    return value += raw;
}

void StartXml(void* events, const xmlChar* name, const xmlChar*, const xmlChar*, int,
              const xmlChar**, int count, int, const xmlChar** parts) {
    constexpr int kPartsEach = 5;  // name, prefix, namespace, begin and end of the value
    MarkupAttributes attributes;
    for (int at = 0; at < count * kPartsEach; at += kPartsEach)
        attributes.Add(View(parts[at]),
                       AttributeValue({reinterpret_cast<const char*>(parts[at + 3]),
                                       static_cast<std::size_t>(parts[at + 4] - parts[at + 3])}));
    static_cast<Events*>(events)->Start(View(name), attributes);
}

void EndXml(void* events, const xmlChar* name, const xmlChar*, const xmlChar*) {
    static_cast<Events*>(events)->End(View(name));
}

void Text(void* events, const xmlChar* text, int length) {
    static_cast<Events*>(events)->Text(text, length);
}

// The five of XML itself; those that a document declares stand for nothing, so they cannot grow.
xmlEntityPtr PredefinedEntity(void*, const xmlChar* name) {
    return xmlGetPredefinedEntity(name);
}

}  // namespace

struct XmlReader::Parser {
    explicit Parser(MarkupListener& listener) : events(listener) {}
    ~Parser() {
        if (context == nullptr)
            return;
        if (context->myDoc != nullptr)
            xmlFreeDoc(context->myDoc);
        xmlFreeParserCtxt(context);
    }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    Events events;
    TagWatch tags;
    xmlSAXHandler calls{};
    xmlParserCtxtPtr context = nullptr;
};

XmlReader::XmlReader(MarkupListener& listener) : parser_(std::make_unique<Parser>(listener)) {
    xmlInitParser();
    Parser& parser = *parser_;
    parser.calls.characters = Text;
    parser.calls.ignorableWhitespace = Text;
    parser.calls.cdataBlock = Text;
    parser.calls.initialized = XML_SAX2_MAGIC;
    parser.calls.startElementNs = StartXml;
    parser.calls.endElementNs = EndXml;
    parser.calls.getEntity = PredefinedEntity;
    parser.context = xmlCreatePushParserCtxt(&parser.calls, &parser.events, nullptr, 0, nullptr);
    if (parser.context != nullptr)
        xmlCtxtUseOptions(parser.context,
                          XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET);
}

XmlReader::~XmlReader() = default;

bool XmlReader::Feed(std::string_view bytes) {
    return parser_->context != nullptr && parser_->tags.IsFine(bytes) &&
           xmlParseChunk(parser_->context, bytes.data(), static_cast<int>(bytes.size()), 0) == 0;
}

bool XmlReader::Finish() {
    return parser_->context != nullptr && xmlParseChunk(parser_->context, "", 0, 1) == 0;
}

#include "documents/markup_reader.h"

#include <libxml/HTMLparser.h>
#include <libxml/parser.h>
#include <libxml/parserInternals.h>

#include <algorithm>
#include <cstring>

bool MarkupAttributes::Has(std::string_view name) const {
    return std::any_of(pairs_.begin(), pairs_.end(),
                       [name](const auto& pair) { return pair.first == name; });
}

std::string_view MarkupAttributes::Value(std::string_view name) const {
    for (const auto& [key, value] : pairs_)
        if (key == name)
            return value;
    return {};
}

namespace {

// The parser's time for a tag grows with the square of its attributes, and that for an end tag with
// the depth it stands at.
constexpr int kMaxAttributes = 30000;
constexpr int kMaxDepth = 50000;

std::string_view View(const xmlChar* text) {
    return text == nullptr ? std::string_view() : reinterpret_cast<const char*>(text);
}

// Turns the parser's calls into the listener's.
class Events {
public:
    explicit Events(MarkupListener& listener) : listener_(listener) {}

    void Start(std::string_view name, const MarkupAttributes& attributes) {
        ++depth_;
        if (skipped_ > 0 || !listener_.EvElement(name, attributes))
            ++skipped_;
    }
    void End(std::string_view name) {
        --depth_;
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

    int Depth() const { return depth_; }

private:
    MarkupListener& listener_;
    int depth_ = 0;
    int skipped_ = 0;  // how many elements deep in one that is left out
};

// Sees tags with more attributes than anybody writes before the parser does.
class TagWatch {
public:
    bool IsFine(std::string_view bytes) {
        for (const char byte : bytes) {
            if (byte == '<' || byte == '>') {
                attributes_ = 0;
                isOpened_ = byte == '<';
                isInTag_ = false;
            } else if (isOpened_) {
                isOpened_ = false;
                isInTag_ = byte != '!' && byte != '?';
            } else if (isInTag_ && (byte == '=' || byte == ' ' || byte == '\n') &&
                       ++attributes_ > kMaxAttributes) {
                return false;
            }
        }
        return true;
    }

private:
    bool isOpened_ = false;
    bool isInTag_ = false;
    int attributes_ = 0;
};

void StartXml(void* events, const xmlChar* name, const xmlChar*, const xmlChar*, int,
              const xmlChar**, int count, int, const xmlChar** parts) {
    constexpr int kPartsEach = 5;  // name, prefix, namespace, begin and end of the value
    MarkupAttributes attributes;
    for (int at = 0; at < count * kPartsEach; at += kPartsEach)
        attributes.Add(View(parts[at]), {reinterpret_cast<const char*>(parts[at + 3]),
                                         static_cast<std::size_t>(parts[at + 4] - parts[at + 3])});
    static_cast<Events*>(events)->Start(View(name), attributes);
}

void EndXml(void* events, const xmlChar* name, const xmlChar*, const xmlChar*) {
    static_cast<Events*>(events)->End(View(name));
}

void StartHtml(void* events, const xmlChar* name, const xmlChar** pairs) {
    MarkupAttributes attributes;
    for (; pairs != nullptr && pairs[0] != nullptr; pairs += 2)
        attributes.Add(View(pairs[0]), View(pairs[1]));
    static_cast<Events*>(events)->Start(View(name), attributes);
}

void EndHtml(void* events, const xmlChar* name) {
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

struct MarkupReader::Parser {
    explicit Parser(MarkupListener& listener) : events(listener) {}
    ~Parser() {
        if (context == nullptr)
            return;
        if (context->myDoc != nullptr)
            xmlFreeDoc(context->myDoc);
        if (isHtml)
            htmlFreeParserCtxt(context);
        else
            xmlFreeParserCtxt(context);
    }
    Parser(const Parser&) = delete;
    Parser& operator=(const Parser&) = delete;

    Events events;
    TagWatch tags;
    xmlSAXHandler calls{};
    xmlParserCtxtPtr context = nullptr;
    bool isHtml = false;
};

MarkupReader::MarkupReader(Kind kind, MarkupListener& listener)
    : parser_(std::make_unique<Parser>(listener)) {
    xmlInitParser();
    Parser& parser = *parser_;
    parser.isHtml = kind == Kind::kHtml;
    parser.calls.characters = Text;
    parser.calls.ignorableWhitespace = Text;
    parser.calls.cdataBlock = Text;
    if (parser.isHtml) {
        parser.calls.startElement = StartHtml;
        parser.calls.endElement = EndHtml;
        // What stands in scripts and styles, which nobody reads, comes as CDATA.
        parser.context = htmlCreatePushParserCtxt(&parser.calls, &parser.events, nullptr, 0,
                                                  nullptr, XML_CHAR_ENCODING_UTF8);
        if (parser.context != nullptr)
            htmlCtxtUseOptions(parser.context, HTML_PARSE_RECOVER | HTML_PARSE_NOERROR |
                                                   HTML_PARSE_NOWARNING | HTML_PARSE_NONET |
                                                   HTML_PARSE_IGNORE_ENC);
    } else {
        parser.calls.initialized = XML_SAX2_MAGIC;
        parser.calls.startElementNs = StartXml;
        parser.calls.endElementNs = EndXml;
        parser.calls.getEntity = PredefinedEntity;
        parser.context =
            xmlCreatePushParserCtxt(&parser.calls, &parser.events, nullptr, 0, nullptr);
        if (parser.context != nullptr)
            xmlCtxtUseOptions(parser.context,
                              XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_NONET);
    }
}

MarkupReader::~MarkupReader() = default;

bool MarkupReader::Feed(std::string_view bytes) {
    if (parser_->context == nullptr || !parser_->tags.IsFine(bytes))
        return false;
    const int length = static_cast<int>(bytes.size());
    if (!parser_->isHtml)
        return xmlParseChunk(parser_->context, bytes.data(), length, 0) == 0;
    htmlParseChunk(parser_->context, bytes.data(), length, 0);
    return parser_->events.Depth() < kMaxDepth;
}

bool MarkupReader::Finish() {
    if (parser_->context == nullptr)
        return false;
    if (parser_->isHtml) {
        htmlParseChunk(parser_->context, "", 0, 1);
        return true;
    }
    return xmlParseChunk(parser_->context, "", 0, 1) == 0;
}

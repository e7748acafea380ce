// XML and HTML as a stream of elements and texts. Entities of the document's own are never
// expanded, nothing is loaded from elsewhere, no tree is built.
#pragma once

#include <memory>
#include <string_view>
#include <utility>
#include <vector>

// Names and values of one element; valid during the call. Names come without a namespace's prefix.
class MarkupAttributes {
public:
    void Add(std::string_view name, std::string_view value) { pairs_.emplace_back(name, value); }
    bool Has(std::string_view name) const;
    std::string_view Value(std::string_view name) const;  // empty when there is none

private:
    std::vector<std::pair<std::string_view, std::string_view>> pairs_;
};

class MarkupListener {
public:
    virtual ~MarkupListener() = default;
    // Element names come without prefix, those of HTML in small letters. False leaves out the
    // element with all that it holds; its end is not told then.
    virtual bool EvElement(std::string_view name, const MarkupAttributes& attributes) = 0;
    virtual void EvElementEnd(std::string_view name) = 0;
    virtual void EvText(std::string_view text) = 0;  // a piece of it, UTF-8
};

class MarkupReader {
public:
    enum class Kind { kXml, kHtml };
    // HTML is read as UTF-8 whatever it says, XML in the charset that it names. The listener must
    // outlive this.
    MarkupReader(Kind kind, MarkupListener& listener);
    ~MarkupReader();
    MarkupReader(const MarkupReader&) = delete;
    MarkupReader& operator=(const MarkupReader&) = delete;

    // The next bytes; false when they cannot be what they should. HTML always can, unless it is
    // nested or filled with attributes only to take time.
    bool Feed(std::string_view bytes);
    // After the last; false when something is missing.
    bool Finish();

private:
    struct Parser;
    std::unique_ptr<Parser> parser_;
};

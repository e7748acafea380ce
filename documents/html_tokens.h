// HTML as a row of tags and texts, as browsers cut it: scripts and styles are passed over to their
// own end, a "<" that begins no tag is text, character references are resolved. Linear in the
// page's length whatever it holds; nothing in it is an error.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "documents/markup_listener.h"

struct HtmlToken {
    enum class Kind { kText, kStart, kEnd } kind = Kind::kText;
    std::string name;  // of a tag, in small letters, without prefix
    std::string text;
    MarkupAttributes attributes;
    bool isClosed = false;  // "<br/>"; only where that means something
};

class HtmlTokens {
public:
    // UTF-8; its bytes must outlive this.
    explicit HtmlTokens(std::string_view page);

    bool Next(HtmlToken& token);  // false at the end
    // Of the page, how far it is read, in bytes.
    std::size_t Position() const { return at_; }

private:
    bool NextTag(HtmlToken& token);
    bool SkipDeclaration();
    void ReadText(HtmlToken& token);
    void ReadRawText(HtmlToken& token);
    void ReadAttributes(HtmlToken& token);
    std::string_view ReadValue();
    void SkipBlanks();
    bool IsAt(std::string_view text) const { return page_.substr(at_).starts_with(text); }

    std::string_view page_;
    std::size_t at_ = 0;
    bool isXhtml_;
    int foreign_ = 0;      // how deep in drawings and formulas, where "/>" ends an element
    std::string rawText_;  // the element whose content holds no tags
    std::set<std::string> neverClosed_;  // of those: no end tag is ahead
    // Where the last of these stand: what is opened behind them is never closed.
    std::size_t lastTagEnd_;
    std::size_t lastQuote_;
    std::size_t lastApostrophe_;
    std::size_t lastCommentEnd_;
    std::size_t lastCdataEnd_;
};

// The text with its character references ("&amp;", "&#233;") resolved. In an attribute's value,
// names without a semicolon stay where they may be part of an address.
std::string ResolveReferences(std::string_view text, bool isInAttribute);

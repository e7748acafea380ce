// A web page as a stream of elements and texts, with the tags that its writer left out.
#pragma once

#include <string_view>
#include <vector>

#include "documents/html_tokens.h"
#include "documents/markup_listener.h"

class HtmlReader {
public:
    // UTF-8. Both must outlive this.
    HtmlReader(std::string_view page, MarkupListener& listener);

    // Reads on, a few thousand tags at a time; false at the end.
    bool ReadSome();
    // Of the page, how far it is read, in bytes: told during an element's event, it names the
    // element.
    std::size_t Position() const { return tokens_.Position(); }

private:
    struct Element {
        std::string name;
        unsigned int barriers;  // what it keeps from being ended through it
    };

    void Start(const HtmlToken& token);
    void End(const std::string& name);
    void EndWhatEndsBefore(const std::string& name);
    void Push(const HtmlToken& token);
    void PopTo(std::size_t depth);
    bool EndNearest(const std::string& name, unsigned int barrier);
    void CloseHead(const std::string& name);

    HtmlTokens tokens_;
    HtmlToken token_;
    MarkupListener& listener_;
    std::vector<Element> open_;
    std::size_t skippedFrom_;  // from this depth on nothing is told
};

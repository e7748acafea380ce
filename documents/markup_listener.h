// What the readers of XML and of HTML tell.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Names and values of one element. Names come without a namespace's prefix but "epub:type" and
// "xml:lang" in HTML.
class MarkupAttributes {
public:
    void Add(std::string_view name, std::string_view value) { pairs_.emplace_back(name, value); }
    void Clear() { pairs_.clear(); }
    std::size_t Count() const { return pairs_.size(); }
    bool Has(std::string_view name) const;
    std::string_view Value(std::string_view name) const;  // empty when there is none
    // Where two namespaces have an attribute of one name.
    std::string_view LastValue(std::string_view name) const;
    // Whether one of the words in the value is this one.
    bool HasWord(std::string_view name, std::string_view word) const;

private:
    std::vector<std::pair<std::string, std::string>> pairs_;
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

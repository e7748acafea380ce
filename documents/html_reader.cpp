#include "documents/html_reader.h"

#include <algorithm>
#include <array>
#include <limits>

#include "documents/small_texts.h"

namespace {

constexpr int kTokensAtOnce = 5000;
// As browsers: what is nested deeper than anybody writes stands side by side.
constexpr std::size_t kMaxDepth = 512;
constexpr std::size_t kNothing = std::numeric_limits<std::size_t>::max();

constexpr SortedNames<17> kVoid = {"area",  "base",  "basefont", "bgsound", "br",    "col",
                                   "embed", "frame", "hr",       "img",     "input", "keygen",
                                   "link",  "meta",  "param",    "source",  "wbr"};
constexpr SortedNames<9> kInHead = {"base",   "link",  "meta",     "noscript", "object",
                                    "script", "style", "template", "title"};
// A paragraph ends where one of these begins.
constexpr SortedNames<37> kEndsParagraph = {
    "address", "article", "aside",   "blockquote", "center",   "dd",         "details", "dialog",
    "dir",     "div",     "dl",      "dt",         "fieldset", "figcaption", "figure",  "footer",
    "form",    "h1",      "h2",      "h3",         "h4",       "h5",         "h6",      "header",
    "hgroup",  "hr",      "li",      "main",       "menu",     "nav",        "ol",      "p",
    "pre",     "section", "summary", "table",      "ul"};
// The end tags of all but these end whatever stands open within.
constexpr SortedNames<26> kInline = {"a",     "abbr", "acronym", "b",      "bdi",  "bdo",  "big",
                                     "cite",  "code", "del",     "dfn",    "em",   "font", "i",
                                     "ins",   "kbd",  "label",   "mark",   "nobr", "q",    "s",
                                     "small", "span", "strike",  "strong", "u"};
static_assert(std::is_sorted(kVoid.begin(), kVoid.end()));
static_assert(std::is_sorted(kInHead.begin(), kInHead.end()));
static_assert(std::is_sorted(kEndsParagraph.begin(), kEndsParagraph.end()));
static_assert(std::is_sorted(kInline.begin(), kInline.end()));

// Elements that end tags and implied ends do not reach through: those of most elements, of a list's
// items, of a table's parts, of the parts of a choice and of a ruby.
enum Barrier : unsigned int {
    kScope = 1,
    kListScope = 2,
    kTableScope = 4,
    kChoice = 8,
    kRuby = 16
};

unsigned int BarriersOf(std::string_view name) {
    constexpr SortedNames<9> kScopes = {"body",  "button", "caption",  "html", "object",
                                        "table", "td",     "template", "th"};
    constexpr SortedNames<9> kListScopes = {"body",  "dl", "html", "menu", "ol",
                                            "table", "td", "th",   "ul"};
    static_assert(std::is_sorted(kScopes.begin(), kScopes.end()));
    static_assert(std::is_sorted(kListScopes.begin(), kListScopes.end()));
    const bool isTable = name == "table" || name == "html" || name == "template";
    return (IsOneOf(name, kScopes) ? kScope : 0U) | (IsOneOf(name, kListScopes) ? kListScope : 0U) |
           (isTable ? kTableScope : 0U) | (name == "select" ? kChoice : 0U) |
           (name == "ruby" ? kRuby : 0U);
}

}  // namespace

HtmlReader::HtmlReader(std::string_view page, MarkupListener& listener)
    : tokens_(page), listener_(listener), skippedFrom_(kNothing) {}

bool HtmlReader::ReadSome() {
    for (int i = 0; i < kTokensAtOnce; ++i) {
        if (!tokens_.Next(token_)) {
            PopTo(0);
            return false;
        }
        switch (token_.kind) {
            case HtmlToken::Kind::kStart:
                Start(token_);
                break;
            case HtmlToken::Kind::kEnd:
                End(token_.name);
                break;
            case HtmlToken::Kind::kText:
                if (token_.text.find_first_not_of(kWhiteSpace) != std::string::npos)
                    CloseHead("");
                if (skippedFrom_ == kNothing)
                    listener_.EvText(token_.text);
                break;
        }
    }
    return true;
}

// A page's head ends with the first thing that does not belong there, whether it says so or not.
void HtmlReader::CloseHead(const std::string& name) {
    if (!open_.empty() && open_.back().name == "head" && !IsOneOf(name, kInHead))
        PopTo(open_.size() - 1);
}

void HtmlReader::Start(const HtmlToken& token) {
    const std::string& name = token.name;
    // These hold text alone; one that is never closed ends here.
    if (!open_.empty() && (open_.back().name == "title" || open_.back().name == "textarea"))
        PopTo(open_.size() - 1);
    CloseHead(name);
    EndWhatEndsBefore(name);
    const bool isVoid = IsOneOf(name, kVoid) || token.isClosed;
    if (!isVoid && open_.size() < kMaxDepth)
        Push(token);
    else if (skippedFrom_ == kNothing && listener_.EvElement(name, token.attributes))
        listener_.EvElementEnd(name);
}

void HtmlReader::Push(const HtmlToken& token) {
    if (skippedFrom_ == kNothing && !listener_.EvElement(token.name, token.attributes))
        skippedFrom_ = open_.size();
    open_.push_back({token.name, BarriersOf(token.name)});
}

void HtmlReader::EndWhatEndsBefore(const std::string& name) {
    if (IsOneOf(name, kEndsParagraph))
        EndNearest("p", kScope);
    if (IsHeadingName(name) && !open_.empty() && IsHeadingName(open_.back().name)) {
        PopTo(open_.size() - 1);
    } else if (name == "li") {
        EndNearest("li", kListScope);
    } else if (name == "dt" || name == "dd") {
        EndNearest("dt", kListScope);
        EndNearest("dd", kListScope);
    } else if (name == "td" || name == "th") {
        EndNearest("td", kTableScope);
        EndNearest("th", kTableScope);
    } else if (name == "tr") {
        EndNearest("tr", kTableScope);
    } else if (name == "tbody" || name == "thead" || name == "tfoot") {
        for (const char* part : {"caption", "colgroup", "tbody", "thead", "tfoot"})
            EndNearest(part, kTableScope);
    } else if (name == "option" || name == "optgroup") {
        EndNearest("option", kChoice);
    } else if (name == "rt" || name == "rp") {
        EndNearest("rt", kRuby);
        EndNearest("rp", kRuby);
    }
}

void HtmlReader::End(const std::string& name) {
    if (name == "body" || name == "html")
        return;  // what stands behind them is shown all the same
    if (IsOneOf(name, kInline)) {
        // "<b><p>a</b>b": the paragraph goes on.
        for (std::size_t depth = open_.size(); depth > 0; --depth) {
            if (open_[depth - 1].name == name)
                return PopTo(depth - 1);
            if (!IsOneOf(open_[depth - 1].name, kInline))
                return;
        }
        return;
    }
    constexpr SortedNames<8> kOfTable = {"caption", "table", "tbody", "td",
                                         "tfoot",   "th",    "thead", "tr"};
    static_assert(std::is_sorted(kOfTable.begin(), kOfTable.end()));
    const unsigned int barrier = name == "table"           ? 0U
                                 : IsOneOf(name, kOfTable) ? kTableScope
                                                           : kScope;
    const bool ended = EndNearest(name, barrier);
    // Browsers make a paragraph or a line end of the end tag alone.
    if (!ended && (name == "p" || name == "br") && skippedFrom_ == kNothing &&
        listener_.EvElement(name, {}))
        listener_.EvElementEnd(name);
}

// Ends the nearest open element of this name, and all within it, unless one of the barriers stands
// between.
bool HtmlReader::EndNearest(const std::string& name, unsigned int barrier) {
    for (std::size_t depth = open_.size(); depth > 0; --depth) {
        if (open_[depth - 1].name == name) {
            PopTo(depth - 1);
            return true;
        }
        if ((open_[depth - 1].barriers & barrier) != 0)
            return false;
    }
    return false;
}

void HtmlReader::PopTo(std::size_t depth) {
    while (open_.size() > depth) {
        if (skippedFrom_ == kNothing)
            listener_.EvElementEnd(open_.back().name);
        else if (skippedFrom_ + 1 == open_.size())
            skippedFrom_ = kNothing;
        open_.pop_back();
    }
}

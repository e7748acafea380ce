#include "documents/html_tokens.h"

#include <glib.h>

#include <algorithm>

#include "documents/small_texts.h"

namespace {

constexpr std::size_t kXhtmlWithin = 1024;
constexpr std::size_t kMostKeptAttributes = 200;  // the others are read past

// Up to their end tag they hold no other tags.
constexpr std::string_view kRawText[] = {"script",  "style",    "xmp",   "iframe",
                                         "noembed", "noframes", "title", "textarea"};

bool IsLetter(char character) {
    return g_ascii_isalpha(character) != 0;
}

// "M:Math" gives "math"; "epub:type" stays.
std::string TagName(std::string_view name) {
    name.remove_prefix(std::min(name.rfind(':') + 1, name.size()));
    std::string lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), g_ascii_tolower);
    return lower;
}

bool IsXhtml(std::string_view page) {
    const std::string_view head = page.substr(0, kXhtmlWithin);
    return head.find("<?xml") != std::string_view::npos ||
           head.find("/xhtml") != std::string_view::npos;
}

// "<a href=..." rather than "a <b or so": what a page that was cut off ends with.
bool LooksLikeCutTag(std::string_view text) {
    return text.find('=') != std::string_view::npos ||
           text.find_first_of(kWhiteSpace) == std::string_view::npos;
}

bool BeginsWithName(std::string_view text, std::string_view name) {
    return text.size() >= name.size() &&
           g_ascii_strncasecmp(text.data(), name.data(), name.size()) == 0;
}

}  // namespace

HtmlTokens::HtmlTokens(std::string_view page)
    : page_(page),
      isXhtml_(IsXhtml(page)),
      lastTagEnd_(page.rfind('>')),
      lastQuote_(page.rfind('"')),
      lastApostrophe_(page.rfind('\'')),
      lastCommentEnd_(page.rfind("-->")),
      lastCdataEnd_(page.rfind("]]>")) {}

bool HtmlTokens::Next(HtmlToken& token) {
    while (at_ < page_.size()) {
        if (!rawText_.empty()) {
            ReadRawText(token);
            if (!token.text.empty())
                return true;
        } else if (page_[at_] != '<') {
            ReadText(token);
            return true;
        } else if (NextTag(token)) {
            return true;
        }
    }
    return false;
}

// At a "<". False when it gave nothing to tell.
bool HtmlTokens::NextTag(HtmlToken& token) {
    const bool isEnd = IsAt("</");
    const std::size_t name = at_ + (isEnd ? 2 : 1);
    const char first = name < page_.size() ? page_[name] : ' ';
    if (!isEnd && IsAt("<![CDATA[") && lastCdataEnd_ != std::string_view::npos &&
        lastCdataEnd_ > at_) {
        at_ += std::string_view("<![CDATA[").size();
        const std::size_t end = page_.find("]]>", at_);
        token.kind = HtmlToken::Kind::kText;
        token.text = page_.substr(at_, end - at_);
        at_ = end + 3;
        return !token.text.empty();
    }
    if (first == '!' || first == '?' || (isEnd && !IsLetter(first)))
        return SkipDeclaration();
    const bool isUnfinished = lastTagEnd_ == std::string_view::npos || lastTagEnd_ < at_;
    if (IsLetter(first) && isUnfinished && LooksLikeCutTag(page_.substr(at_))) {
        at_ = page_.size();
        return false;
    }
    if (!IsLetter(first) || isUnfinished) {
        ReadText(token);
        return true;
    }
    at_ = std::min(page_.find_first_of(" \t\r\n\f/>", name), page_.size());
    token.kind = isEnd ? HtmlToken::Kind::kEnd : HtmlToken::Kind::kStart;
    token.name = TagName(page_.substr(name, at_ - name));
    ReadAttributes(token);
    if ((token.name == "svg" || token.name == "math") && !token.isClosed)
        foreign_ = std::max(foreign_ + (isEnd ? -1 : 1), 0);
    const bool isRaw =
        std::find(std::begin(kRawText), std::end(kRawText), token.name) != std::end(kRawText);
    if (!isEnd && isRaw && !token.isClosed)
        rawText_ = token.name;
    return true;
}

// A comment, "<!DOCTYPE ...>", "<?xml ...?>", "</ >".
bool HtmlTokens::SkipDeclaration() {
    std::size_t end = 0;
    if (IsAt("<!-->") || IsAt("<!--->"))
        end = page_.find('>', at_);
    else if (IsAt("<!--"))
        end = lastCommentEnd_ == std::string_view::npos || lastCommentEnd_ < at_
                  ? page_.size()
                  : page_.find("-->", at_) + 2;
    else
        end = page_.find('>', at_);
    at_ = std::min(end, page_.size() - 1) + 1;
    return false;
}

// To the next "<", with the one that stands here.
void HtmlTokens::ReadText(HtmlToken& token) {
    const std::size_t end = std::min(page_.find('<', at_ + 1), page_.size());
    token.kind = HtmlToken::Kind::kText;
    token.text = ResolveReferences(page_.substr(at_, end - at_), false);
    at_ = end;
}

// The content of the element whose start tag was the last token.
void HtmlTokens::ReadRawText(HtmlToken& token) {
    const bool isText = rawText_ == "title" || rawText_ == "textarea";
    const bool isClosed = !neverClosed_.contains(rawText_);
    std::size_t end = isClosed ? page_.find("</", at_) : std::string_view::npos;
    while (end != std::string_view::npos && !BeginsWithName(page_.substr(end + 2), rawText_))
        end = page_.find("</", end + 2);
    if (end == std::string_view::npos)
        neverClosed_.insert(rawText_);
    // A title that is never closed ends where anything else begins.
    if (end == std::string_view::npos && isText)
        end = page_.find('<', at_);
    end = std::min(end, page_.size());
    token.kind = HtmlToken::Kind::kText;
    token.text = isText ? ResolveReferences(page_.substr(at_, end - at_), false)
                        : std::string(page_.substr(at_, end - at_));
    at_ = end;
    rawText_.clear();
}

void HtmlTokens::SkipBlanks() {
    at_ = std::min(page_.find_first_not_of(kWhiteSpace, at_), page_.size());
}

void HtmlTokens::ReadAttributes(HtmlToken& token) {
    token.attributes.Clear();
    token.isClosed = false;
    for (;;) {
        SkipBlanks();
        if (at_ >= page_.size() || page_[at_] == '>')
            break;
        if (page_[at_] == '/') {
            token.isClosed =
                (isXhtml_ || foreign_ > 0) && at_ + 1 < page_.size() && page_[at_ + 1] == '>';
            ++at_;
            continue;
        }
        const std::size_t begin = at_;
        at_ = std::min(page_.find_first_of(" \t\r\n\f/>=", begin + 1), page_.size());
        std::string name(page_.substr(begin, at_ - begin));
        std::transform(name.begin(), name.end(), name.begin(), g_ascii_tolower);
        SkipBlanks();
        std::string_view value;
        if (at_ < page_.size() && page_[at_] == '=')
            value = ReadValue();
        if (token.kind == HtmlToken::Kind::kStart && token.attributes.Count() < kMostKeptAttributes)
            token.attributes.Add(name, ResolveReferences(value, true));
    }
    at_ = std::min(at_ + 1, page_.size());
}

// Behind a "=".
std::string_view HtmlTokens::ReadValue() {
    ++at_;
    SkipBlanks();
    const char quote = at_ < page_.size() ? page_[at_] : ' ';
    const std::size_t last = quote == '"' ? lastQuote_ : quote == '\'' ? lastApostrophe_ : 0;
    if ((quote == '"' || quote == '\'') && last > at_) {
        const std::size_t begin = at_ + 1;
        const std::size_t end = page_.find(quote, begin);
        at_ = end + 1;
        return page_.substr(begin, end - begin);
    }
    const std::size_t begin = at_;
    at_ = std::min(page_.find_first_of(" \t\r\n\f>", begin), page_.size());
    return page_.substr(begin, at_ - begin);
}

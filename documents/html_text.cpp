#include "documents/html_text.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>

#include "documents/markup_reader.h"
#include "documents/problems.h"
#include "documents/text_charset.h"
#include "foundation/owned_text.h"

namespace {

constexpr std::size_t kPageBlock = 16384;
constexpr std::size_t kLargestPage = 64U << 20;
constexpr std::size_t kCharsetWithin = 2048;

template <std::size_t N>
bool IsOneOf(std::string_view name, const std::array<std::string_view, N>& sorted) {
    return std::binary_search(sorted.begin(), sorted.end(), name);
}

// What a page holds but does not show, or not as text.
constexpr std::array<std::string_view, 18> kUnread = {
    "applet",   "audio",    "canvas", "datalist", "embed", "head",   "iframe", "map",   "noembed",
    "noframes", "noscript", "object", "rp",       "rt",    "script", "select", "style", "svg"};
constexpr std::array<std::string_view, 39> kParagraphs = {
    "address", "article", "aside",   "blockquote", "body",  "caption",  "center",     "dd",
    "details", "dialog",  "div",     "dl",         "dt",    "fieldset", "figcaption", "figure",
    "footer",  "form",    "h1",      "h2",         "h3",    "h4",       "h5",         "h6",
    "header",  "hgroup",  "hr",      "legend",     "li",    "main",     "nav",        "ol",
    "p",       "pre",     "section", "summary",    "table", "tr",       "ul"};
// Links from a text to its notes and back.
constexpr std::array<std::string_view, 2> kNoteLinks = {"doc-backlink", "doc-noteref"};
static_assert(std::is_sorted(kUnread.begin(), kUnread.end()));
static_assert(std::is_sorted(kParagraphs.begin(), kParagraphs.end()));

class PageListener : public MarkupListener {
public:
    explicit PageListener(TextFlow& flow) : flow_(flow) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (IsOneOf(name, kUnread) || name == "template" || name == "video" || name == "textarea" ||
            attributes.Has("hidden") || attributes.Value("aria-hidden") == "true" ||
            IsOneOf(attributes.Value("role"), kNoteLinks))
            return false;
        if (name == "br")
            flow_.EndLine();
        else if (name == "pre")
            ++preformatted_;
        else if (name == "sup")
            ++raised_;
        else if (name == "img")
            flow_.Add(attributes.Value("alt"));
        if (IsOneOf(name, kParagraphs))
            flow_.EndParagraph();
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        if (name == "td" || name == "th")
            flow_.EndCell();
        else if (name == "pre" && preformatted_ > 0)
            --preformatted_;
        else if (name == "sup" && raised_ > 0)
            --raised_;
        if (IsOneOf(name, kParagraphs))
            flow_.EndParagraph();
    }
    void EvText(std::string_view text) override {
        if (preformatted_ > 0)
            flow_.AddLines(text);
        else if (raised_ > 0)
            flow_.AddRaised(text);
        else
            flow_.Add(text);
    }

private:
    TextFlow& flow_;
    int preformatted_ = 0;
    int raised_ = 0;
};

// The value behind "charset=" or "encoding=", quoted or not; empty when there is none.
std::string NamedCharset(std::string_view bytes) {
    std::string head(bytes.substr(0, kCharsetWithin));
    std::transform(head.begin(), head.end(), head.begin(), g_ascii_tolower);
    for (const std::string_view key : {"charset=", "encoding="}) {
        const std::size_t found = head.find(key);
        if (found == std::string::npos)
            continue;
        const std::size_t begin = head.find_first_not_of("\"' ", found + key.size());
        if (begin == std::string::npos)
            continue;
        return head.substr(begin, head.find_first_of("\"' />;?", begin) - begin);
    }
    return {};
}

std::string DecodePage(std::string_view bytes) {
    const std::string charset = NamedCharset(bytes);
    if (charset.empty() || charset.starts_with("utf"))
        return DecodeText(bytes);
    // The old name of what pages mean by it.
    const char* known = charset == "iso-8859-1" || charset == "us-ascii" || charset == "latin1"
                            ? "WINDOWS-1252"
                            : charset.c_str();
    gsize length = 0;
    const OwnedText text(g_convert_with_fallback(bytes.data(), static_cast<gssize>(bytes.size()),
                                                 "UTF-8", known, "?", nullptr, &length, nullptr));
    return text ? std::string(text.get(), length) : DecodeText(bytes);
}

}  // namespace

std::string ReadHtml(std::string_view bytes, const ReadingWatch& watch, TextFlow& flow) {
    if (bytes.size() > kLargestPage)
        return kTooLongDocument;
    const std::string page = DecodePage(bytes);
    PageListener listener(flow);
    MarkupReader reader(MarkupReader::Kind::kHtml, listener);
    for (std::size_t at = 0; at < page.size(); at += kPageBlock) {
        if (!reader.Feed(std::string_view(page).substr(at, kPageBlock)))
            return kDamagedDocument;
        if (watch.IsToEnd())
            return watch.Problem();
        if (flow.IsTooLong())
            return kTooLongDocument;
    }
    reader.Finish();
    flow.EndParagraph();
    return flow.IsTooLong() ? kTooLongDocument : "";
}

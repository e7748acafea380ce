#include "documents/page_listener.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <utility>

#include "documents/list_numbers.h"
#include "documents/reference_mark.h"
#include "documents/small_texts.h"

namespace {

constexpr std::size_t kLongestRaised = 200;  // bytes of what may be a mark

// What a page holds but does not show, or not as text.
constexpr SortedNames<6> kCode = {"code", "kbd", "pre", "samp", "tt", "var"};
constexpr SortedNames<21> kUnread = {
    "annotation", "annotation-xml", "applet",   "audio",    "canvas",   "datalist", "iframe",
    "map",        "noembed",        "noframes", "noscript", "object",   "rp",       "rt",
    "script",     "select",         "svg",      "template", "textarea", "video",    "xmp"};
constexpr SortedNames<42> kParagraphs = {
    "address",   "article",    "aside",   "blockquote", "body",   "caption", "center",
    "dd",        "details",    "dialog",  "dir",        "div",    "dl",      "dt",
    "fieldset",  "figcaption", "figure",  "footer",     "form",   "h1",      "h2",
    "h3",        "h4",         "h5",      "h6",         "header", "hgroup",  "hr",
    "legend",    "li",         "main",    "menu",       "nav",    "ol",      "p",
    "pagebreak", "pre",        "section", "summary",    "table",  "tr",      "ul"};
static_assert(std::is_sorted(kUnread.begin(), kUnread.end()));
static_assert(std::is_sorted(kParagraphs.begin(), kParagraphs.end()));

// Links from a text to its notes and back.
bool IsNoteLink(const MarkupAttributes& attributes) {
    return attributes.HasWord("role", "doc-noteref") ||
           attributes.HasWord("epub:type", "noteref") ||
           attributes.HasWord("class", "footnote-ref") || attributes.HasWord("class", "noteref");
}

bool IsBackLink(const MarkupAttributes& attributes) {
    return attributes.HasWord("role", "doc-backlink") ||
           attributes.HasWord("epub:type", "backlink") ||
           attributes.HasWord("class", "footnote-back") ||
           attributes.HasWord("class", "footnote-backref") ||
           attributes.HasWord("class", "mw-cite-backlink") ||
           attributes.HasWord("class", "mw-editsection") ||
           attributes.HasWord("class", "headerlink");
}

bool IsNote(const MarkupAttributes& attributes) {
    for (const std::string_view word : {"doc-footnote", "doc-endnote", "doc-endnotes"})
        if (attributes.HasWord("role", word))
            return true;
    for (const std::string_view word :
         {"footnote", "footnotes", "endnote", "endnotes", "rearnote", "rearnotes"})
        if (attributes.HasWord("epub:type", word) || attributes.HasWord("class", word))
            return true;
    return false;
}

bool IsHiddenByStyle(const MarkupAttributes& attributes) {
    std::string style(attributes.Value("style"));
    std::erase_if(style, [](char sign) { return sign == ' ' || sign == '\n' || sign == '\t'; });
    // A formula is hidden behind its picture.
    return style.find("display:none") != std::string::npos &&
           attributes.Value("class").find("math") == std::string_view::npos;
}

}  // namespace

bool PageListener::IsLeftOut(std::string_view name, const MarkupAttributes& attributes) const {
    if (IsOneOf(name, kUnread) || attributes.Has("hidden"))
        return true;
    if (attributes.Value("aria-hidden") == "true" && name != "math")
        return true;
    if (IsBackLink(attributes) || (IsNoteLink(attributes) && !rules_.referenceMarks))
        return true;
    if (!rules_.notes && IsNote(attributes))
        return true;
    if ((!rules_.code && name == "pre") ||
        (!rules_.captions && (name == "figcaption" || name == "caption")))
        return true;
    return IsHiddenByStyle(attributes);
}

bool PageListener::EvHeadElement(std::string_view name, const MarkupAttributes& attributes) {
    if (name == "meta" && attributes.Value("name") == "author" && author_.empty())
        author_ = attributes.Value("content");
    if (name != "head" && name != "title")
        return false;
    isInTitle_ = name == "title";
    open_.emplace_back();
    return true;
}

bool PageListener::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    if (name == "head" || name == "title" || name == "meta" || name == "link" || name == "base")
        return EvHeadElement(name, attributes);
    if (name == "style") {
        isInStyle_ = true;
        open_.emplace_back();
        open_.back().isStyle = true;
        return true;
    }
    if (IsLeftOut(name, attributes)) {
        if (IsOneOf(name, kParagraphs))
            flow_.EndParagraph();
        return false;
    }
    Element element;
    if (name == "math" || formula_.IsOpen()) {
        element.isFormulaPart = true;
        if (!formula_.Begin(MathPart(name)))
            return false;
    } else {
        BeginWords(name, attributes, element);
        BeginBlock(name, attributes, element);
    }
    if (attributes.Has("lang"))
        BeginLanguage(attributes.Value("lang"), element);
    else if (attributes.Has("xml:lang"))
        BeginLanguage(attributes.Value("xml:lang"), element);
    open_.push_back(element);
    return true;
}

void PageListener::BeginWords(std::string_view name, const MarkupAttributes& attributes,
                              Element& element) {
    if (name == "br") {
        flow_.EndLine();
    } else if (name == "img" || (name == "input" && attributes.Value("type") == "image")) {
        if (raisedDepth_ == 0)
            flow_.AddPicture(attributes.Value("alt"));
    } else if (name == "q") {
        flow_.Add("“");
        element.endsQuote = true;
    } else if (name == "sup") {
        element.isRaised = true;
        if (raisedDepth_++ == 0) {
            raised_.clear();
            raisedHasReference_ = references_ > 0;
        }
    } else if (name == "a" && (attributes.Value("href").find('#') != std::string_view::npos ||
                               IsNoteLink(attributes))) {
        element.isReference = true;
        // A note's own number, which styles set apart from its text.
        element.endsNumber = attributes.HasWord("class", "sdfootnotesym") ||
                             attributes.HasWord("class", "sdendnotesym");
        ++references_;
        raisedHasReference_ = raisedHasReference_ || raisedDepth_ > 0;
    }
}

void PageListener::BeginBlock(std::string_view name, const MarkupAttributes& attributes,
                              Element& element) {
    element.isParagraph = IsOneOf(name, kParagraphs);
    if (element.isParagraph) {
        if (raisedDepth_ > 0)
            DropRaising();
        flow_.EndParagraph();
    }
    if (raisedDepth_ == 0)
        BeginLayout(name, attributes, element);
    element.isCode = IsOneOf(name, kCode);
    if (element.isCode && code_++ == 0)
        flow_.SetCode(true);
    if (name == "pre") {
        element.isPreformatted = true;
        ++preformatted_;
    } else if (name == "td" || name == "th") {
        element.endsCell = true;
    } else if (name == "ol" || name == "ul" || name == "menu" || name == "dir") {
        List list;
        const bool isPlain =
            attributes.Value("style").find("list-style") != std::string_view::npos &&
            attributes.Value("style").find("none") != std::string_view::npos;
        list.isOrdered = name == "ol" && !isPlain;
        list.next = NumberIn(attributes.Value("start"), 1);
        list.step = attributes.Has("reversed") ? -1 : 1;
        list.type = attributes.Value("type");
        lists_.push_back(list);
        element.isList = true;
    } else if (name == "li") {
        BeginListItem(attributes);
    } else if (IsHeadingName(name) || attributes.Value("role") == "heading") {
        element.isHeading = true;
        flow_.BeginHeading(IsHeadingName(name) ? name[1] - '0'
                                               : NumberIn(attributes.Value("aria-level"), 2));
    }
}

// Styles make lines of what is written without a blank between.
void PageListener::BeginLayout(std::string_view name, const MarkupAttributes& attributes,
                               Element& element) {
    element.layout = styles_.LayoutOf(name, attributes);
    if (element.isParagraph || name == "td" || name == "th")
        element.layout.isLines = false;
    element.standsApart = !open_.empty() && open_.back().layout.partsChildren;
    if (element.layout.isLines)
        flow_.EndOpenLine();
    else if (element.standsApart)
        flow_.AddBlank();
}

void PageListener::BeginListItem(const MarkupAttributes& attributes) {
    if (lists_.empty() || !lists_.back().isOrdered)
        return;
    List& list = lists_.back();
    const int number = NumberIn(attributes.Value("value"), list.next);
    list.next = number + list.step;
    flow_.AddListMark(ListNumber(number, list.type) + ".");
}

void PageListener::BeginLanguage(std::string_view tag, Element& element) {
    element.changesLanguage = true;
    languages_.emplace_back(tag);
    flow_.SetLanguage(tag);
}

void PageListener::EndRaised() {
    if (!IsReferenceMark(raised_, flow_.Text(), raisedHasReference_))
        flow_.AddRaised(raised_);
    else if (rules_.referenceMarks && !raised_.empty())
        flow_.Add(raised_.front() == '[' ? raised_ : "[" + raised_ + "]");
    raised_.clear();
    raisedHasReference_ = false;
}

// What is longer than any mark, or holds paragraphs, is text: its end was forgotten, mostly.
void PageListener::DropRaising() {
    if (raised_.size() > kLongestRaised)
        flow_.Add(std::exchange(raised_, {}));
    EndRaised();
    raisedDepth_ = 0;
    for (Element& element : open_)
        element.isRaised = false;
}

void PageListener::AddRaised(std::string_view text) {
    raised_ += text;
    if (raised_.size() > kLongestRaised)
        DropRaising();
}

void PageListener::EvElementEnd(std::string_view) {
    if (open_.empty())
        return;
    const Element element = open_.back();
    open_.pop_back();
    isInTitle_ = false;
    if (element.isStyle) {
        styles_.Learn(std::exchange(style_, {}));
        isInStyle_ = false;
    }
    if (element.isFormulaPart) {
        formula_.End();
        if (!formula_.IsOpen())
            flow_.Add(formula_.Take());
    }
    if (element.endsQuote)
        flow_.Add("”");
    if (element.isRaised && --raisedDepth_ == 0)
        EndRaised();
    if (element.isReference)
        --references_;
    if (element.endsNumber)
        flow_.AddBlank();
    preformatted_ -= element.isPreformatted ? 1 : 0;
    if (element.isCode && --code_ == 0)
        flow_.SetCode(false);
    if (element.isList)
        lists_.pop_back();
    if (element.endsCell)
        flow_.EndCell();
    if (element.changesLanguage) {
        languages_.pop_back();
        flow_.SetLanguage(languages_.back());
    }
    if (element.isHeading)
        flow_.EndHeading();
    if (element.isParagraph)
        flow_.EndParagraph();
    if (element.layout.isLines)
        flow_.EndOpenLine();
    else if (element.standsApart)
        flow_.AddBlank();
}

void PageListener::EvText(std::string_view text) {
    if (isInStyle_)
        style_ += text.substr(
            0, PageStyles::kMostBytes - std::min(style_.size(), PageStyles::kMostBytes));
    else if (isInTitle_)
        title_ += text;
    else if (formula_.IsOpen())
        formula_.AddText(text);
    else if (raisedDepth_ > 0)
        AddRaised(text);
    else if (preformatted_ > 0)
        flow_.AddLines(text);
    else
        flow_.Add(text);
}

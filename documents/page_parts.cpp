#include "documents/page_parts.h"

#include <glib.h>

#include <algorithm>
#include <functional>
#include <set>

#include "documents/small_texts.h"
#include "foundation/whole_characters.h"

namespace {

constexpr std::size_t kMostElements = 300000;
constexpr std::size_t kMostHeadings = 1000;
constexpr std::size_t kLongestHeadingText = 300;
constexpr std::size_t kShortestTitle = 4;
constexpr std::size_t kLongestReplyMark = 4;  // "Re", "Antw"
constexpr std::size_t kLeastProse = 60;       // letters of a block: less is a label

constexpr SortedNames<10> kSurroundingRoles = {"alertdialog", "dialog",     "listbox", "menu",
                                               "menubar",     "navigation", "search",  "status",
                                               "toolbar",     "tooltip"};
static_assert(std::is_sorted(kSurroundingRoles.begin(), kSurroundingRoles.end()));
constexpr SortedNames<8> kNeverText = {"button", "noscript", "script",   "select",
                                       "style",  "svg",      "template", "textarea"};
static_assert(std::is_sorted(kNeverText.begin(), kNeverText.end()));
constexpr SortedNames<40> kPartsOfLines = {
    "a",     "abbr",  "acronym", "b",      "bdi",  "bdo", "big",  "br",   "cite",  "code",
    "data",  "del",   "dfn",     "em",     "font", "hr",  "i",    "img",  "input", "ins",
    "kbd",   "label", "mark",    "math",   "q",    "rp",  "rt",   "ruby", "s",     "samp",
    "small", "span",  "strike",  "strong", "sub",  "sup", "time", "tt",   "u",     "var"};
static_assert(std::is_sorted(kPartsOfLines.begin(), kPartsOfLines.end()));
constexpr SortedNames<14> kContainers = {"article", "body",   "center", "div",  "fieldset",
                                         "form",    "header", "html",   "main", "section",
                                         "table",   "tbody",  "td",     "tr"};
static_assert(std::is_sorted(kContainers.begin(), kContainers.end()));

std::string InOneLine(std::string_view text) {
    std::string line;
    for (const char sign : text) {
        if (kWhiteSpace.find(sign) == std::string_view::npos)
            line += g_ascii_tolower(sign);
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    if (line.ends_with(' '))
        line.pop_back();
    return line;
}

// By the first of its classes, which numbers each of several posts.
std::size_t KinOf(std::string_view names, PostName postName) {
    std::string name(names.substr(0, names.find(' ')));
    if (postName == PostName::kPost)
        std::erase_if(name, [](char sign) { return g_ascii_isdigit(sign); });
    return name.empty() ? 0 : std::hash<std::string>()(name);
}

// Identifiers of sections are made of their headings, whatever these are about.
bool IsNamedByHeading(std::string_view name, const MarkupAttributes& attributes) {
    const std::string_view names = attributes.Value("class");
    return name == "section" || names.find("section") != std::string_view::npos ||
           names.find("sect") != std::string_view::npos ||
           names.find("level") != std::string_view::npos;
}

bool IsFieldSeen(std::string_view name, const MarkupAttributes& attributes) {
    const std::string_view type = attributes.Value("type");
    return name == "select" || name == "textarea" ||
           (name == "input" && type != "hidden" && type != "submit" && type != "button");
}

PartSign SignOf(std::string_view name, const MarkupAttributes& attributes, const PagePart& part) {
    const std::string_view role = attributes.Value("role");
    if (name == "nav" || name == "form" || name == "dialog" || IsOneOf(role, kSurroundingRoles))
        return PartSign::kSurely;
    if (part.isPage || part.isMain || part.isArticle || part.isHeading)
        return PartSign::kNone;
    SurroundingName named = SurroundingNameOfClass(attributes.Value("class"));
    if (!IsNamedByHeading(name, attributes))
        named = std::max(named, SurroundingNameOfId(attributes.Value("id")));
    if (named == SurroundingName::kMatter && name != "p")
        return PartSign::kMatter;
    if (name == "aside" || name == "footer" || name == "header" || role == "banner" ||
        role == "complementary" || role == "contentinfo")
        return PartSign::kMarked;
    return named == SurroundingName::kNone ? PartSign::kNone : PartSign::kPlace;
}

}  // namespace

bool PageParts::IsTooLarge() const {
    return parts_.size() > kMostElements;
}

bool PageParts::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    parts_[open_].hasButtons |= name == "button";
    parts_[open_].hasFields |= IsFieldSeen(name, attributes);
    if (IsOneOf(name, kNeverText))
        return false;
    isInTitle_ = name == "title";
    const bool isLink = name == "a" && attributes.Has("href");
    PagePart part;
    part.at = reader_->Position();
    part.parent = open_;
    const std::string_view role = attributes.Value("role");
    part.isForm = name == "form";
    part.isPage = name == "body" || name == "html";
    part.isMain = name == "main" || role == "main";
    part.isArticle = name == "article" || role == "article";
    part.isAside = name == "aside" || role == "complementary";
    part.isHeading = IsHeadingName(name);
    part.isContainer = IsOneOf(name, kContainers) || name.find('-') != std::string_view::npos;
    const std::string_view names = attributes.Value("class");
    part.classes = std::hash<std::string_view>()(names);
    part.sign = SignOf(name, attributes, part);
    const bool isOfPage = name != "head" && name != "title";
    part.postName = PostNameOfClass(names);
    if (PostNameOfClass(attributes.Value("data-role")) == PostName::kBeside)
        part.postName = PostName::kBeside;
    part.kin = KinOf(names, part.postName);
    const bool isBlock = !IsOneOf(name, kPartsOfLines) || part.sign != PartSign::kNone ||
                         part.postName == PostName::kBeside;
    const bool isTime = name == "time" || IsNameOfTime(names);
    part.isInLine = !isBlock && isTime;
    const bool isPart = isOfPage && (isBlock || isTime);
    isPart_.push_back(isPart);
    isLink_.push_back(isLink);
    linkDepth_ += isLink ? 1 : 0;
    if (isLink)
        ++parts_[open_].links;
    if (isPart) {
        open_ = parts_.size();
        parts_.push_back(part);
    }
    parts_[open_].hasTime |= isTime;
    parts_[open_].namesWriter |= IsNameOfWriter(names) ||
                                 attributes.HasWord("itemprop", "author") ||
                                 attributes.HasWord("rel", "author");
    if (!isPart)
        return true;
    if (part.isHeading && headings_.size() < kMostHeadings)
        headings_.push_back({open_, name == "h1", {}});
    return true;
}

void PageParts::EvElementEnd(std::string_view) {
    isInTitle_ = false;
    if (isPart_.empty())
        return;
    linkDepth_ -= isLink_.back() ? 1 : 0;
    isLink_.pop_back();
    if (isPart_.back()) {
        parts_[open_].end = parts_.size();
        open_ = parts_[open_].parent;
    }
    isPart_.pop_back();
}

void PageParts::EvText(std::string_view text) {
    if (isInTitle_) {
        title_ += WholeCharacters(text, kLongestHeadingText);
        return;
    }
    PagePart& part = parts_[open_];
    bool isInWord = false;
    for (const char sign : text) {
        const bool isBlank = kWhiteSpace.find(sign) != std::string_view::npos;
        part.ownText += isBlank ? 0 : 1;
        part.ownLinked += isBlank || linkDepth_ == 0 ? 0 : 1;
        part.ownWords += !isBlank && !isInWord ? 1 : 0;
        isInWord = !isBlank;
    }
    if (!headings_.empty() && headings_.back().text.size() < kLongestHeadingText)
        for (std::size_t i = open_;; i = parts_[i].parent) {
            if (i == headings_.back().part)
                headings_.back().text += WholeCharacters(text, kLongestHeadingText);
            if (i <= headings_.back().part)
                break;
        }
}

std::vector<PagePart> PageParts::Take() {
    parts_[0].end = parts_.size();
    parts_[0].isContainer = true;
    parts_[0].isPage = true;
    SumUp(parts_);
    FindRepeatedTitles();
    // Forms around what is written, ready to be changed by who wrote it, are none.
    std::set<std::size_t> texts;
    for (std::size_t i = parts_.size(); i-- > 1;) {
        const PagePart& part = parts_[i];
        parts_[part.parent].hasFields |= part.hasFields;
        if (part.isForm && !part.hasFields && part.prose > 0)
            texts.insert(part.kin);
    }
    for (PagePart& part : parts_)
        if (part.isForm && !part.hasFields && texts.contains(part.kin))
            part.sign = PartSign::kNone;
    return std::move(parts_);
}

// "Re: Title" in every post of a thread.
void PageParts::FindRepeatedTitles() {
    const PageTitle title = Title();
    const auto textOf = [](const Heading& heading) {
        const std::string text = InOneLine(heading.text);
        const std::size_t colon = text.find(": ");
        return colon <= kLongestReplyMark ? text.substr(colon + 2) : text;
    };
    const auto isTitle = [&title](const Heading& heading) { return heading.part == title.part; };
    const auto found = std::ranges::find_if(headings_, isTitle);
    if (found == headings_.end() || !title.isNamed)
        return;
    const std::string text = textOf(*found);
    for (const Heading& heading : headings_)
        parts_[heading.part].repeatsTitle = !isTitle(heading) && textOf(heading) == text;
}

// The heading that the page's own title names, the longest of several; else the first of the first
// level, else the first.
PageTitle PageParts::Title() const {
    const std::string title = InOneLine(title_);
    const Heading* best = nullptr;
    std::size_t length = 0;
    for (const Heading& heading : headings_) {
        const std::string text = InOneLine(heading.text);
        if (text.size() >= kShortestTitle && text.size() > length &&
            title.find(text) != std::string::npos) {
            best = &heading;
            length = text.size();
        }
    }
    for (const Heading& heading : headings_)
        if (best == nullptr && heading.isFirstLevel)
            best = &heading;
    if (best == nullptr)
        return {headings_.empty() ? 0 : headings_.front().part};
    return {best->part, true, length > 0};
}

void SumUp(std::vector<PagePart>& parts) {
    struct Line {
        std::size_t text = 0;
        std::size_t linked = 0;
    };
    std::vector<Line> lines;
    lines.reserve(parts.size());
    for (PagePart& part : parts) {
        part.text = part.ownText;
        part.linked = part.ownLinked;
        part.words = part.ownWords;
        part.prose = 0;
        part.longest = 0;
        lines.push_back({part.ownText, part.ownLinked});
    }
    for (std::size_t i = parts.size(); i-- > 0;) {
        PagePart& part = parts[i];
        const Line& line = lines[i];
        if (!part.isInLine && line.text >= kLeastProse && line.linked * 2 <= line.text) {
            part.prose += line.text;
            part.longest = std::max(part.longest, line.text - line.linked);
        }
        if (i == 0 || part.isLeftOut)
            continue;
        PagePart& parent = parts[part.parent];
        parent.text += part.text;
        parent.linked += part.linked;
        parent.words += part.words;
        parent.prose += part.prose;
        parent.longest = std::max(parent.longest, part.longest);
        if (part.isInLine) {
            lines[part.parent].text += line.text;
            lines[part.parent].linked += line.linked;
        }
    }
}

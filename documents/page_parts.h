// The elements of a web page, with what each of them holds and calls itself.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "documents/html_reader.h"
#include "documents/markup_listener.h"
#include "documents/surrounding_names.h"

// What an element says of itself that lets it surround an article.
enum class PartSign {
    kNone,
    kPlace,   // a class or identifier: where it stands
    kMatter,  // a class or identifier: what it holds
    kMarked,  // its element or role: it may
    kSurely   // its element or role: it does
};

// Lengths are letters of text.
struct PagePart {
    std::size_t at = 0;      // in the page, where its tag ends
    std::size_t parent = 0;  // in the list, before it; of the first one itself
    std::size_t end = 0;     // in the list, behind all that it holds
    PartSign sign = PartSign::kNone;
    PostName postName = PostName::kNone;
    bool isPage = false;  // the page, its root or its body
    bool isForm = false;
    bool isMain = false;
    bool isArticle = false;
    bool isAside = false;
    std::size_t kin = 0;       // the same for all of one class; 0: of none
    std::size_t classes = 0;   // the same for all that have the same ones
    bool isContainer = false;  // of paragraphs, and none itself
    bool isHeading = false;
    bool repeatsTitle = false;  // a heading, as of a reply
    bool isInLine = false;      // as long as nobody leaves it out, it is of its parent's line
    bool isLeftOut = false;
    // In itself or in parts of its lines.
    bool hasTime = false;
    bool hasButtons = false;
    bool hasFields = false;    // that are seen, of forms
    bool namesWriter = false;  // of a post
    // Of itself, without its children, unless they are parts of a line.
    std::size_t ownText = 0;
    std::size_t ownLinked = 0;
    std::size_t ownWords = 0;
    // Of all that it holds and that is not left out.
    std::size_t text = 0;
    std::size_t linked = 0;
    std::size_t words = 0;
    std::size_t links = 0;
    std::size_t prose = 0;    // in blocks that are no links
    std::size_t longest = 0;  // of the longest of those
};

struct PageTitle {
    std::size_t part = 0;  // a heading; 0: the page has none
    bool isSure = false;   // it is not only the first of them
    bool isNamed = false;  // by the page's own title
};

// Asked by one page; the first part is the page.
class PageParts : public MarkupListener {
public:
    PageParts() : parts_(1) {}

    void SetReader(const HtmlReader& reader) { reader_ = &reader; }
    bool IsTooLarge() const;
    // When the page is read; the parts summed up.
    PageTitle Title() const;
    std::vector<PagePart> Take();

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

private:
    void FindRepeatedTitles();

    struct Heading {
        std::size_t part;
        bool isFirstLevel;
        std::string text;
    };

    const HtmlReader* reader_ = nullptr;
    std::vector<PagePart> parts_;
    std::size_t open_ = 0;      // the part in which the reader is
    std::vector<bool> isPart_;  // of the open elements
    std::vector<bool> isLink_;
    std::size_t linkDepth_ = 0;
    std::vector<Heading> headings_;
    bool isInTitle_ = false;
    std::string title_;
};

// Fills in what parts hold from what they hold of their own.
void SumUp(std::vector<PagePart>& parts);

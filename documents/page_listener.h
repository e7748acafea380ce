// Makes the running text of a web page's or an EPUB chapter's elements.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "documents/document.h"
#include "documents/formula_text.h"
#include "documents/markup_listener.h"
#include "documents/page_styles.h"
#include "documents/text_flow.h"

class PageListener : public MarkupListener {
public:
    // Both must outlive this.
    PageListener(TextFlow& flow, const DocumentRules& rules)
        : flow_(flow), rules_(rules), languages_{flow.Language()} {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

    // What the page says of itself.
    const std::string& Title() const { return title_; }
    const std::string& Author() const { return author_; }

private:
    struct Element {
        bool isParagraph = false;
        PageLayout layout;         // by its styles
        bool standsApart = false;  // from what is beside it
        bool isStyle = false;
        bool isPreformatted = false;
        bool isCode = false;
        bool isRaised = false;
        bool isReference = false;  // a link within pages
        bool endsNumber = false;   // of a note, before its text
        bool isHeading = false;
        bool isFormulaPart = false;
        bool endsQuote = false;
        bool endsCell = false;
        bool isList = false;
        bool changesLanguage = false;
    };
    struct List {
        bool isOrdered = false;
        int next = 1;
        int step = 1;
        std::string type;
    };

    bool IsLeftOut(std::string_view name, const MarkupAttributes& attributes) const;
    void BeginWords(std::string_view name, const MarkupAttributes& attributes, Element& element);
    void BeginBlock(std::string_view name, const MarkupAttributes& attributes, Element& element);
    void BeginLayout(std::string_view name, const MarkupAttributes& attributes, Element& element);
    void BeginListItem(const MarkupAttributes& attributes);
    void BeginLanguage(std::string_view tag, Element& element);
    void AddRaised(std::string_view text);
    void DropRaising();
    void EndRaised();
    bool EvHeadElement(std::string_view name, const MarkupAttributes& attributes);

    TextFlow& flow_;
    const DocumentRules& rules_;
    std::vector<Element> open_;
    std::vector<List> lists_;
    std::vector<std::string> languages_;  // of the elements that are open and name one
    FormulaText formula_;
    int preformatted_ = 0;
    int code_ = 0;  // elements of it that are open
    int raisedDepth_ = 0;
    int references_ = 0;  // links within pages that are open
    std::string raised_;  // the text above the line
    bool raisedHasReference_ = false;
    bool isInTitle_ = false;
    PageStyles styles_;
    std::string style_;  // of the element that is open
    bool isInStyle_ = false;
    std::string title_;
    std::string author_;
};

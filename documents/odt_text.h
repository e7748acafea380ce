// The text of OpenDocument files: texts (ODT), presentations (ODP) and tables (ODS).
//
// Paragraphs, headings and list items become paragraphs, a table's row one with its cells parted by
// commas, a slide's title a heading. Footnotes and text boxes stand behind the paragraph that they
// belong to. Comments, a speaker's notes, what was deleted under tracked changes and hidden text
// are not read.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "documents/formula_text.h"
#include "documents/markup_listener.h"
#include "documents/odt_object.h"
#include "documents/small_texts.h"
#include "documents/text_flow.h"

class OdtListener : public MarkupListener {
public:
    // The file of an object, such as a formula, by its address; empty when there is none.
    using ObjectContent = std::function<std::string_view(std::string_view address)>;

    // All must outlive this. "styles.xml" may be read before "content.xml" by the same listener.
    OdtListener(TextFlow& flow, const DocumentRules& rules, ObjectContent objects = {});

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override;
    void EvElementEnd(std::string_view name) override;
    void EvText(std::string_view text) override;

    const std::string& Title() const { return title_; }
    const std::string& Author() const { return author_; }
    std::string Remark() const;  // how many objects could not be read; empty for none

private:
    struct Level {
        std::string format;  // empty for bullets
        std::string prefix;
        std::string suffix;
        int start = 1;
    };
    using Counts = std::array<int, kMostListLevels>;  // the next number of each level
    struct List {
        std::string style;
        std::string id;
        int next;
    };
    struct Side {  // what is told behind its paragraph
        TextFlow flow;
        int cells;
        int paragraphs;
        bool isNote;
    };

    bool IsLeftOut(std::string_view name, const MarkupAttributes& attributes) const;
    bool BeginFact(std::string_view name);
    void BeginStyle(std::string_view name, const MarkupAttributes& attributes);
    void BeginList(const MarkupAttributes& attributes);
    void EndList();
    void BeginItem(const MarkupAttributes& attributes);
    void BeginParagraph(std::string_view name, const MarkupAttributes& attributes);
    bool BeginSide(std::string_view name);
    void EndParagraph();
    void EndSide();
    void AddObject(std::string_view address);
    void AddWordsOfObject(std::string words);
    bool BeginInObject(std::string_view name, const MarkupAttributes& attributes);
    void EndInObject(std::string_view name);
    TextFlow& Flow() { return sides_.empty() ? flow_ : sides_.back().flow; }

    TextFlow& flow_;
    const DocumentRules& rules_;
    ObjectContent objects_;
    std::map<std::string, std::vector<Level>, std::less<>> listStyles_;
    std::vector<Level>* levels_ = nullptr;  // of the style that is being read
    std::vector<List> lists_;
    Counts reached_ = {};                                    // by the outermost of these
    Counts continued_ = {};                                  // from which it goes on; 0: it begins
    std::map<std::string, Counts, std::less<>> endedLists_;  // by identifier and by style
    std::vector<Side> sides_;
    std::vector<std::string> behind_;
    std::string itemMark_;  // of an item that has begun
    FormulaText formula_;
    std::size_t objectBytes_ = 0;
    std::optional<OdtObjectListener> object_;  // that is open in a flat document
    int leftOutObjects_ = 0;
    int bodies_ = 0;
    int paragraphs_ = 0;
    int cells_ = 0;
    std::string style_;                                // that is being read
    std::set<std::string, std::less<>> raisedStyles_;  // of letters
    std::vector<bool> areRaised_;                      // the spans that are open
    int descriptions_ = 0;
    bool isSlideTitle_ = false;
    bool isDefaultStyle_ = false;
    std::string description_;
    std::string title_;
    std::string author_;
    std::string* fact_ = nullptr;
};

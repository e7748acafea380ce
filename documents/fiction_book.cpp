#include "documents/fiction_book.h"

#include <algorithm>
#include <string>
#include <utility>

#include "documents/markup_listener.h"
#include "documents/problems.h"
#include "documents/small_texts.h"
#include "documents/text_flow.h"
#include "documents/xml_text.h"

namespace {

class FictionBookListener : public MarkupListener {
public:
    FictionBookListener(TextFlow& flow, const DocumentRules& rules) : flow_(flow), rules_(rules) {}

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        if (name == "binary" || name == "document-info" || name == "publish-info" ||
            name == "src-title-info" || name == "custom-info" || name == "stylesheet")
            return false;
        if (name == "body" && attributes.Value("name") == "notes" && !rules_.notes)
            return false;
        if (name == "a" && attributes.Value("type") == "note" && !rules_.referenceMarks)
            return false;
        if (bodies_ == 0)
            BeginFact(name);
        if (name == "body")
            ++bodies_;
        else if (name == "section")
            ++sections_;
        else if (name == "title" || name == "subtitle")
            BeginTitle(std::max(sections_, 1) + (name == "title" ? 0 : 1));
        else if (name == "image")
            flow_.AddPicture(attributes.Value("alt"));
        else if (name == "empty-line")
            flow_.EndParagraph();
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        fact_ = nullptr;
        if (name == "body")
            --bodies_;
        else if (name == "section")
            --sections_;
        else if (name == "title" || name == "subtitle")
            EndTitle();
        else if (name == "v")
            flow_.EndLine();
        else if (name == "p" || name == "text-author" || name == "tr" || name == "stanza")
            titles_ > 0 ? flow_.EndLine() : flow_.EndParagraph();
        else if (name == "td" || name == "th")
            flow_.EndCell();
    }
    void EvText(std::string_view text) override {
        if (fact_ != nullptr && fact_->size() + text.size() < kLongestFact)
            *fact_ += text;
        else if (bodies_ > 0)
            flow_.Add(text);
    }

    std::string title;
    std::string firstName;
    std::string lastName;
    std::string language;

private:
    void BeginTitle(int level) {
        if (titles_++ == 0)
            flow_.BeginHeading(level);
    }
    void EndTitle() {
        if (--titles_ == 0)
            flow_.EndHeading();
    }
    void BeginFact(std::string_view name) {
        fact_ = nullptr;
        for (const auto& [known, fact] : {std::pair{"book-title", &title},
                                          {"first-name", &firstName},
                                          {"last-name", &lastName},
                                          {"lang", &language}})
            if (name == known && fact->empty())
                fact_ = fact;
        if (name == "body")
            flow_.SetLanguage(language);
    }

    TextFlow& flow_;
    const DocumentRules& rules_;
    int bodies_ = 0;
    int sections_ = 0;
    int titles_ = 0;  // their lines stay together
    std::string* fact_ = nullptr;
};

}  // namespace

Document ReadFictionBook(std::string_view bytes, const ReadingWatch& watch,
                         const DocumentRules& rules) {
    TextFlow flow(rules.referenceMarks);
    FictionBookListener listener(flow, rules);
    if (std::string problem = ReadXml(bytes, listener, flow, watch); !problem.empty())
        return DocumentProblem(std::move(problem));
    Document document = flow.TakeDocument();
    document.title = listener.title;
    document.author =
        listener.firstName + (listener.firstName.empty() ? "" : " ") + listener.lastName;
    return document;
}

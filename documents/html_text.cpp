#include "documents/html_text.h"

#include <utility>

#include "documents/html_reader.h"
#include "documents/page_listener.h"
#include "documents/page_surroundings.h"
#include "documents/problems.h"
#include "documents/text_charset.h"

namespace {

constexpr std::size_t kLargestPage = 64U << 20;

std::string OneLine(std::string_view text) {
    TextFlow flow;
    flow.Add(text);
    return flow.Take();
}

// Hands on what belongs to the article.
class ArticleListener : public MarkupListener {
public:
    ArticleListener(PageListener& page, const PageSurroundings& surroundings)
        : page_(page), surroundings_(surroundings) {}

    void SetReader(const HtmlReader& reader) { reader_ = &reader; }

    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        const std::size_t at = reader_->Position();
        if (surroundings_.leftOut.contains(at) || !page_.EvElement(name, attributes))
            return false;
        inArticle_ += inArticle_ > 0 || at == surroundings_.article ? 1 : 0;
        isInTitle_ = name == "title";
        return true;
    }
    void EvElementEnd(std::string_view name) override {
        inArticle_ -= inArticle_ > 0 ? 1 : 0;
        isInTitle_ = false;
        page_.EvElementEnd(name);
    }
    void EvText(std::string_view text) override {
        if (surroundings_.article == PageSurroundings::kNowhere || inArticle_ > 0 || isInTitle_)
            page_.EvText(text);
    }

private:
    PageListener& page_;
    const PageSurroundings& surroundings_;
    const HtmlReader* reader_ = nullptr;
    int inArticle_ = 0;  // how many elements deep
    bool isInTitle_ = false;
};

std::string ReadText(std::string_view page, const PageSurroundings& surroundings,
                     const ReadingWatch& watch, const DocumentRules& rules, TextFlow& flow,
                     PageFacts& facts) {
    PageListener listener(flow, rules);
    ArticleListener article(listener, surroundings);
    HtmlReader reader(page, article);
    article.SetReader(reader);
    while (reader.ReadSome()) {
        if (watch.IsToEnd())
            return watch.Problem();
        if (flow.IsTooLong())
            return kTooLongDocument;
    }
    flow.EndHeading();
    facts = {OneLine(listener.Title()), OneLine(listener.Author())};
    return flow.IsTooLong() ? kTooLongDocument : "";
}

}  // namespace

std::string ReadHtml(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules,
                     TextFlow& flow, PageFacts& facts) {
    if (bytes.size() > kLargestPage)
        return kTooLongDocument;
    return ReadText(DecodeMarkup(bytes), {}, watch, rules, flow, facts);
}

Document ReadPage(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    TextFlow flow(rules.referenceMarks);
    PageFacts facts;
    if (bytes.size() > kLargestPage)
        return DocumentProblem(kTooLongDocument);
    const std::string page = DecodeMarkup(bytes);
    const PageSurroundings surroundings =
        rules.wholePage ? PageSurroundings() : FindSurroundings(page, watch);
    if (std::string problem = ReadText(page, surroundings, watch, rules, flow, facts);
        !problem.empty())
        return DocumentProblem(std::move(problem));
    Document document = flow.TakeDocument();
    document.title = std::move(facts.title);
    document.author = std::move(facts.author);
    document.hasSurroundings = surroundings.AreThere();
    document.surroundingWords = surroundings.words;
    return document;
}

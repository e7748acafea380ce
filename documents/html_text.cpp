#include "documents/html_text.h"

#include <utility>

#include "documents/html_reader.h"
#include "documents/page_listener.h"
#include "documents/problems.h"
#include "documents/text_charset.h"

namespace {

constexpr std::size_t kLargestPage = 64U << 20;

std::string OneLine(std::string_view text) {
    TextFlow flow;
    flow.Add(text);
    return flow.Take();
}

std::string ReadText(std::string_view page, const ReadingWatch& watch, const DocumentRules& rules,
                     TextFlow& flow, PageFacts& facts) {
    PageListener listener(flow, rules);
    HtmlReader reader(page, listener);
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
    return ReadText(DecodeMarkup(bytes), watch, rules, flow, facts);
}

Document ReadPage(std::string_view bytes, const ReadingWatch& watch, const DocumentRules& rules) {
    TextFlow flow(rules.referenceMarks);
    PageFacts facts;
    if (std::string problem = ReadHtml(bytes, watch, rules, flow, facts); !problem.empty())
        return DocumentProblem(std::move(problem));
    Document document = flow.TakeDocument();
    document.title = std::move(facts.title);
    document.author = std::move(facts.author);
    return document;
}

#include "documents/pptx_text.h"

#include <algorithm>
#include <map>
#include <utility>

#include "documents/list_numbers.h"
#include "documents/reference_mark.h"

namespace {

constexpr std::size_t kMaxSlides = 5000;

// Identifiers in order, or the addresses that they stand for.
class PartsListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes& attributes) override {
        // It has two attributes of this name, the second one in a namespace.
        if (name == "sldId" && slides.size() < kMaxSlides)
            slides.emplace_back(attributes.LastValue("id"));
        else if (name == "Relationship")
            targets.emplace(attributes.Value("Id"), attributes.Value("Target"));
        return true;
    }
    void EvElementEnd(std::string_view) override {}
    void EvText(std::string_view) override {}

    std::vector<std::string> slides;
    std::map<std::string, std::string, std::less<>> targets;
};

}  // namespace

std::vector<std::string> PptxSlides(const ZipIndex& index) {
    PartsListener parts;
    ParseXml(index.Content("ppt/presentation.xml"), parts);
    ParseXml(index.Content("ppt/_rels/presentation.xml.rels"), parts);
    std::vector<std::string> names;
    for (const std::string& slide : parts.slides)
        if (const auto target = parts.targets.find(slide); target != parts.targets.end())
            names.push_back(index.Find("ppt/", target->second));
    return names;
}

// "arabicPeriod", "alphaLcParenR", "romanUcParenBoth". One of another kind or start begins anew.
std::string SlideListener::NextNumber() {
    List& list = lists_[level_];
    if (list.count == 0 || list.numbering != numbering_)
        list = {numbering_, numbering_.start};
    else
        ++list.count;
    const std::string& type = numbering_.type;
    const bool isSmall = type.find("Lc") != std::string::npos;
    const char* const format = type.starts_with("alpha")   ? isSmall ? "a" : "A"
                               : type.starts_with("roman") ? isSmall ? "i" : "I"
                                                           : "1";
    const std::string number = ListNumber(list.count, format);
    return type.ends_with("Period")      ? number + "."
           : type.ends_with("ParenBoth") ? "(" + number + ")"
           : type.ends_with("ParenR")    ? number + ")"
                                         : number;
}

// Of a paragraph: one without a word has no number; what has none ends the list on its level, and
// every one those below.
void SlideListener::BeginWords() {
    if (std::exchange(hasBegun_, true))
        return;
    const bool isItem = !numbering_.type.empty();
    std::fill(lists_.begin() + static_cast<std::ptrdiff_t>(level_ + (isItem ? 1 : 0)), lists_.end(),
              List());
    if (!isItem)
        return;
    const std::string number = NextNumber();
    if (cells_ == 0)
        flow_.AddListMark(number);
}

bool SlideListener::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    if (name == "Fallback" || name == "timing" || name == "rt")
        return false;
    if (name == "oMath" || formula_.IsOpen())
        return formula_.Begin(OfficeMathPart(name));
    if (name == "sp") {
        isTitle_ = false;
        lists_ = {};
    } else if (name == "pPr") {
        level_ = std::min(static_cast<std::size_t>(NumberIn(attributes.Value("lvl"))),
                          kMostListLevels - 1);
    } else if (name == "buAutoNum" && !hasBegun_) {
        numbering_ = {std::string(attributes.Value("type")),
                      std::max(NumberIn(attributes.Value("startAt"), 1), 1)};
    } else if (name == "rPr") {
        isRaised_ = NumberIn(attributes.Value("baseline")) > 0;
    } else if (name == "ph") {
        const std::string_view type = attributes.Value("type");
        isTitle_ = type == "title" || type == "ctrTitle";
        // A slide's number, date and foot are those of every slide.
        if (type == "sldNum" || type == "dt" || type == "ftr")
            isFurniture_ = true;
    } else if (name == "p") {
        level_ = 0;
        hasBegun_ = isRaised_ = false;
        numbering_ = {};
        if (isTitle_ && cells_ == 0)
            flow_.BeginHeading(1);
    } else if (name == "t") {
        ++texts_;
    } else if (name == "br") {
        flow_.EndLine();
    } else if (name == "tc") {
        ++cells_;
    } else if (name == "cNvPr" && attributes.Has("descr")) {
        flow_.AddPicture(attributes.Value("descr"));
        flow_.EndParagraph();
    } else if (Document drawing = drawings_.Take(name, attributes); !drawing.text.empty()) {
        flow_.EndParagraph();
        flow_.Append(std::move(drawing));
    }
    return true;
}

void SlideListener::EvElementEnd(std::string_view name) {
    if (formula_.IsOpen()) {
        formula_.End();
        if (!formula_.IsOpen()) {
            const std::string words = formula_.Take();
            if (!isFurniture_) {
                BeginWords();
                flow_.Add(words);
            }
        }
    } else if (name == "t" && texts_ > 0) {
        --texts_;
    } else if (name == "r") {
        isRaised_ = false;
    } else if (name == "p") {
        if (cells_ > 0)
            flow_.EndCell();
        else
            flow_.EndHeading();
    } else if (name == "tc" && cells_ > 0) {
        --cells_;
        flow_.EndCell();
    } else if (name == "tr" || name == "sp") {
        isTitle_ = isFurniture_ = false;
        flow_.EndParagraph();
    }
}

void SlideListener::EvText(std::string_view text) {
    if (formula_.IsOpen())
        return formula_.AddText(text);
    if (texts_ == 0 || isFurniture_)
        return;
    BeginWords();
    if (!isRaised_)
        flow_.Add(text);
    else if (keepsMarks_ || !IsReferenceMark(text, flow_.Text(), false))
        flow_.AddRaised(text);
}

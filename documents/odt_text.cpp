#include "documents/odt_text.h"

#include <algorithm>
#include <utility>

#include "documents/list_numbers.h"
#include "documents/reference_mark.h"
#include "documents/small_texts.h"
#include "documents/zip_index.h"
#include "foundation/whole_characters.h"

namespace {

constexpr std::size_t kMostSides = 20;
constexpr std::size_t kLargestObjects = 32U << 20;  // all of a document
// What holds text beside that of the paragraph it is anchored in.
constexpr SortedNames<14> kSides = {
    "caption",         "circle",  "connector", "custom-shape", "ellipse",  "line",
    "measure",         "note",    "path",      "polygon",      "polyline", "rect",
    "regular-polygon", "text-box"};
static_assert(std::is_sorted(kSides.begin(), kSides.end()));

// "super 58%", "33% 58%".
bool IsRaised(const MarkupAttributes& attributes) {
    const std::string_view position = attributes.Value("text-position");
    return position.starts_with("super") || NumberIn(position) > 0;
}

// The formula in an object's own file.
class MathListener : public MarkupListener {
public:
    bool EvElement(std::string_view name, const MarkupAttributes&) override {
        isThere = isThere || name == "math";
        return isThere && formula.Begin(MathPart(name));
    }
    void EvElementEnd(std::string_view) override { formula.End(); }
    void EvText(std::string_view text) override { formula.AddText(text); }

    FormulaText formula;
    bool isThere = false;
};

}  // namespace

OdtListener::OdtListener(TextFlow& flow, const DocumentRules& rules, ObjectContent objects)
    : flow_(flow), rules_(rules), objects_(std::move(objects)) {}

bool OdtListener::IsLeftOut(std::string_view name, const MarkupAttributes& attributes) const {
    return IsLeftOutOfOdt(name, attributes) || name == "script" ||
           (name == "note" && !rules_.notes);
}

bool OdtListener::BeginFact(std::string_view name) {
    fact_ = nullptr;
    if (bodies_ > 0)
        return false;
    if (name == "title" && title_.empty())
        fact_ = &title_;
    else if ((name == "creator" || name == "initial-creator") && author_.empty())
        fact_ = &author_;
    return fact_ != nullptr;
}

// Flat documents hold their objects whole.
bool OdtListener::BeginInObject(std::string_view name, const MarkupAttributes& attributes) {
    if (!object_)
        object_.emplace();
    return object_->EvElement(name, attributes);
}

void OdtListener::EndInObject(std::string_view name) {
    object_->EvElementEnd(name);
    if (object_->IsOpen())
        return;
    std::string words = object_->Take();
    object_.reset();
    AddWordsOfObject(std::move(words));
}

bool OdtListener::EvElement(std::string_view name, const MarkupAttributes& attributes) {
    if (IsLeftOut(name, attributes))
        return false;
    if (object_ || (bodies_ > 0 && name == "document"))
        return BeginInObject(name, attributes);
    if (name == "math" || formula_.IsOpen())
        return formula_.Begin(MathPart(name));
    if (BeginFact(name))
        return true;
    BeginStyle(name, attributes);
    if (name == "body")
        ++bodies_;
    else if (name == "p" || name == "h")
        BeginParagraph(name, attributes);
    else if (name == "span")
        areRaised_.push_back(raisedStyles_.contains(attributes.Value("style-name")));
    else if (name == "s" || name == "tab")
        Flow().AddBlank();
    else if (name == "line-break")
        Flow().EndLine();
    else if (name == "list")
        BeginList(attributes);
    else if (name == "list-item")
        BeginItem(attributes);
    else if (name == "frame")
        isSlideTitle_ = attributes.Value("class") == "title";
    else if (name == "object" && attributes.Has("href"))
        AddObject(attributes.Value("href"));
    else if (name == "object-ole" || name == "plugin")
        ++leftOutObjects_;
    else if (bodies_ > 0 && (name == "title" || name == "desc"))
        ++descriptions_;
    else if (IsOdtCell(name))
        ++cells_;
    return !IsOneOf(name, kSides) || BeginSide(name);
}

void OdtListener::BeginStyle(std::string_view name, const MarkupAttributes& attributes) {
    if (name == "list-style") {
        levels_ = &listStyles_[std::string(attributes.Value("name"))];
        levels_->assign(kMostListLevels, {});
    } else if (name == "list-level-style-number" && levels_ != nullptr) {
        const auto level = static_cast<std::size_t>(NumberIn(attributes.Value("level"), 1)) - 1;
        if (level < kMostListLevels)
            (*levels_)[level] = {std::string(attributes.Value("num-format")),
                                 std::string(attributes.Value("num-prefix")),
                                 std::string(attributes.Value("num-suffix")),
                                 NumberIn(attributes.Value("start-value"), 1)};
    } else if (name == "style") {
        style_ = attributes.Value("name");
    } else if (name == "text-properties" && bodies_ == 0 && IsRaised(attributes)) {
        raisedStyles_.insert(style_);
    } else if (name == "default-style") {
        isDefaultStyle_ = attributes.Value("family") == "paragraph";
    } else if (name == "text-properties" && isDefaultStyle_ && attributes.Has("language") &&
               attributes.Value("language") != "none") {
        std::string tag(attributes.Value("language"));
        if (attributes.Has("country") && attributes.Value("country") != "none")
            tag += "-" + std::string(attributes.Value("country"));
        flow_.SetLanguage(tag);
    }
}

void OdtListener::BeginList(const MarkupAttributes& attributes) {
    List list{std::string(attributes.Value("style-name")), std::string(attributes.Value("id")), 0};
    if (lists_.empty()) {
        continued_ = {};
        std::string_view from = attributes.Value("continue-list");
        if (from.empty() && attributes.Value("continue-numbering") == "true")
            from = list.style;
        if (const auto last = endedLists_.find(from); last != endedLists_.end())
            continued_ = last->second;
        reached_ = continued_;
    } else {
        if (list.style.empty())
            list.style = lists_.back().style;
        // An item that begins with a list has no number of its own.
        if (!std::exchange(itemMark_, {}).empty())
            --lists_.back().next;
    }
    const std::size_t level = lists_.size();
    const auto style = listStyles_.find(list.style);
    if (style != listStyles_.end() && level < kMostListLevels) {
        list.next = style->second[level].start;
        if (const int next = std::exchange(continued_[level], 0); next > 0)
            list.next = next;
    }
    lists_.push_back(std::move(list));
}

// Remembers how far it counted, for one that goes on.
void OdtListener::EndList() {
    const List list = std::move(lists_.back());
    lists_.pop_back();
    if (lists_.size() < kMostListLevels)
        reached_[lists_.size()] = list.next;
    if (!lists_.empty())
        return;
    endedLists_[list.style] = reached_;
    if (!list.id.empty())
        endedLists_[list.id] = reached_;
}

void OdtListener::BeginItem(const MarkupAttributes& attributes) {
    if (lists_.empty() || lists_.size() > kMostListLevels)
        return;
    List& list = lists_.back();
    const int number = NumberIn(attributes.Value("start-value"), list.next);
    list.next = number + 1;
    const auto style = listStyles_.find(list.style);
    if (style == listStyles_.end())
        return;
    const Level& level = style->second[lists_.size() - 1];
    itemMark_ = level.format.empty()
                    ? std::string()
                    : level.prefix + ListNumber(number, level.format) + level.suffix;
}

void OdtListener::BeginParagraph(std::string_view name, const MarkupAttributes& attributes) {
    if (paragraphs_++ > 0 || cells_ > 0)
        return;
    if (name == "h" || isSlideTitle_)
        Flow().BeginHeading(NumberIn(attributes.Value("outline-level"), 1));
    else
        Flow().EndParagraph();
    if (itemMark_.empty())
        return;
    Flow().AddListMark(std::exchange(itemMark_, {}));
    // Lists below this item are no parts of those that stood below the one before it.
    for (std::size_t level = lists_.size(); level < kMostListLevels; ++level)
        reached_[level] = continued_[level] = 0;
}

// A note, a text box or a shape. One that stands in no paragraph is read where it stands.
bool OdtListener::BeginSide(std::string_view name) {
    const bool isNote = name == "note";
    if (paragraphs_ == 0 && !isNote && sides_.empty())
        return true;
    if (sides_.size() >= kMostSides)
        return false;
    sides_.push_back({TextFlow(rules_.referenceMarks), std::exchange(cells_, 0),
                      std::exchange(paragraphs_, 0), isNote});
    return true;
}

void OdtListener::EndSide() {
    if (sides_.empty())
        return;
    Side side = std::move(sides_.back());
    sides_.pop_back();
    cells_ = side.cells;
    paragraphs_ = side.paragraphs;
    std::string text = side.flow.Take();
    if (!text.empty() && behind_.size() < kMostBehind)
        behind_.push_back((side.isNote ? "Note: " : "") + text);
}

// A small file may name one large object many times.
void OdtListener::AddObject(std::string_view address) {
    std::string_view content;
    if (objects_ && objectBytes_ <= kLargestObjects)
        content = objects_(address);
    objectBytes_ += content.size();
    if (objectBytes_ > kLargestObjects)
        return AddWordsOfObject("");
    MathListener math;
    ParseXml(content, math);
    if (!math.isThere) {
        OdtObjectListener words;
        ParseXml(content, words);
        return AddWordsOfObject(words.Take());
    }
    if (paragraphs_ == 0)
        Flow().EndParagraph();
    Flow().AddBlank();
    Flow().Add(math.formula.Take());
}

// Behind its paragraph.
void OdtListener::AddWordsOfObject(std::string words) {
    if (words.empty() || behind_.size() >= kMostBehind) {
        ++leftOutObjects_;
    } else if (paragraphs_ > 0) {
        behind_.push_back(std::move(words));
    } else {
        Flow().EndParagraph();
        Flow().AddLines(words);
        Flow().EndParagraph();
    }
}

std::string OdtListener::Remark() const {
    return leftOutObjects_ == 0 ? ""
                                : "Other objects that were put into the document are left out: " +
                                      std::to_string(leftOutObjects_) + ".";
}

void OdtListener::EndParagraph() {
    if (paragraphs_ > 0)
        --paragraphs_;
    if (cells_ > 0)
        Flow().EndCell();
    else if (paragraphs_ == 0)
        Flow().EndHeading();
    if (paragraphs_ > 0 || !sides_.empty())
        return;
    for (const std::string& text : std::exchange(behind_, {})) {
        if (cells_ == 0)
            flow_.EndParagraph();
        flow_.AddLines(text);
        if (cells_ == 0)
            flow_.EndParagraph();
    }
}

void OdtListener::EvElementEnd(std::string_view name) {
    fact_ = nullptr;
    if (object_) {
        EndInObject(name);
    } else if (formula_.IsOpen()) {
        formula_.End();
        if (!formula_.IsOpen())
            Flow().Add(formula_.Take());
    } else if (name == "body") {
        --bodies_;
    } else if (name == "span" && !areRaised_.empty()) {
        areRaised_.pop_back();
    } else if (name == "p" || name == "h") {
        EndParagraph();
    } else if (name == "list" && !lists_.empty()) {
        EndList();
    } else if (name == "list-item") {
        itemMark_.clear();
    } else if (name == "frame") {
        isSlideTitle_ = false;
    } else if (descriptions_ > 0 && (name == "title" || name == "desc")) {
        --descriptions_;
        Flow().AddPicture(std::exchange(description_, {}));
    } else if (name == "table-row" && cells_ == 0) {
        Flow().EndParagraph();
    } else if (IsOdtCell(name) && cells_ > 0) {
        --cells_;
    } else if (IsOneOf(name, kSides)) {
        EndSide();
    } else if (name == "list-style") {
        levels_ = nullptr;
    } else if (name == "default-style") {
        isDefaultStyle_ = false;
    }
}

void OdtListener::EvText(std::string_view text) {
    if (object_)
        object_->EvText(text);
    else if (fact_ != nullptr && fact_->size() + text.size() < kLongestFact)
        *fact_ += text;
    else if (formula_.IsOpen())
        formula_.AddText(text);
    else if (descriptions_ > 0)
        description_ += WholeCharacters(text, kLongestFact);
    else if (bodies_ == 0 || paragraphs_ == 0)
        return;
    else if (areRaised_.empty() || !areRaised_.back())
        Flow().Add(text);
    else if (rules_.referenceMarks || !IsReferenceMark(text, Flow().Text(), false))
        Flow().AddRaised(text);
}

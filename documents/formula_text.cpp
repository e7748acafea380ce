#include "documents/formula_text.h"

#include <glib.h>

#include <algorithm>
#include <optional>
#include <utility>

namespace {

// What is longer is no help to a listener.
constexpr int kMostTokens = 40;
constexpr std::size_t kMostDepth = 24;
constexpr std::size_t kLongestToken = 1000;

// Between two of which stands an invisible "times", or a function's name and its argument.
constexpr std::string_view kUnseen[] = {"\u2061", "\u2062", "\u2063", "\u2064"};
constexpr std::string_view kOpening[] = {"(", "[", "{", "√", "|", "(−", "(-"};
constexpr std::string_view kClosing[] = {")", "]", "}", ",", "!", "′", "|", ".", ";"};

template <typename List>
bool IsAnyOf(std::string_view text, const List& list) {
    return std::find(std::begin(list), std::end(list), text) != std::end(list);
}

// "2", "-1": what has signs of its own above the line.
bool CanBeRaised(std::string_view text) {
    return !text.empty() && text.size() <= 4 &&
           text.find_first_not_of("0123456789-") == std::string_view::npos;
}

std::string WithPlainMinus(std::string text) {
    constexpr std::string_view kTypeset = "−";
    if (text.starts_with(kTypeset))
        text.replace(0, kTypeset.size(), "-");
    return text;
}

std::string Raised(std::string_view text) {
    constexpr std::string_view kRaised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    std::string raised;
    for (const char digit : text)
        raised += digit == '-' ? std::string_view("⁻") : kRaised[digit - '0'];
    return raised;
}

}  // namespace

std::optional<FormulaText::Part> MathPart(std::string_view name) {
    using Part = FormulaText::Part;
    constexpr std::pair<std::string_view, Part> kParts[] = {
        {"mi", Part::kToken},           {"mn", Part::kToken},     {"mo", Part::kToken},
        {"mtext", Part::kToken},        {"ms", Part::kToken},     {"msup", Part::kRaised},
        {"mover", Part::kLowered},      {"msub", Part::kLowered}, {"munder", Part::kLowered},
        {"mfrac", Part::kFraction},     {"msqrt", Part::kRoot},   {"mroot", Part::kTable},
        {"msubsup", Part::kTable},      {"mtable", Part::kTable}, {"munderover", Part::kTable},
        {"mmultiscripts", Part::kTable}};
    for (const auto& [known, part] : kParts)
        if (known == name)
            return part;
    return name.starts_with("m") || name == "semantics" ? std::optional(Part::kRow) : std::nullopt;
}

std::optional<FormulaText::Part> OfficeMathPart(std::string_view name) {
    using Part = FormulaText::Part;
    constexpr std::pair<std::string_view, Part> kParts[] = {
        {"t", Part::kToken},    {"sSup", Part::kRaised},   {"sSub", Part::kLowered},
        {"f", Part::kFraction}, {"rad", Part::kRoot},      {"m", Part::kTable},
        {"nary", Part::kTable}, {"sSubSup", Part::kTable}, {"eqArr", Part::kTable}};
    for (const auto& [known, part] : kParts)
        if (known == name)
            return part;
    for (const std::string_view row :
         {"oMath", "e", "sup", "sub", "num", "den", "r", "d", "func", "fName", "box", "acc", "bar"})
        if (name == row)
            return Part::kRow;
    return std::nullopt;
}

struct FormulaText::Node {
    Part part = Part::kRow;
    std::string text;
    std::vector<std::unique_ptr<Node>> children;
};

FormulaText::FormulaText() : formula_(std::make_unique<Node>()), open_{formula_.get()} {}

FormulaText::~FormulaText() = default;

bool FormulaText::Begin(std::optional<Part> part) {
    if (!part)
        return false;
    isTable_ = isTable_ || part == Part::kTable;
    if (part == Part::kToken)
        ++tokens_;
    // What is too much is left out of memory as well.
    if (tokens_ > kMostTokens || open_.size() > kMostDepth || isTable_) {
        isTable_ = true;
        open_.push_back(open_.back());
        return true;
    }
    open_.back()->children.push_back(std::make_unique<Node>());
    open_.back()->children.back()->part = *part;
    open_.push_back(open_.back()->children.back().get());
    return true;
}

void FormulaText::End() {
    if (open_.size() > 1)
        open_.pop_back();
}

void FormulaText::AddText(std::string_view text) {
    if (isTable_ || open_.back()->part != Part::kToken)
        return;
    open_.back()->text += text;
    isTable_ = open_.back()->text.size() > kLongestToken;
}

std::string FormulaText::Take() {
    std::string line;
    if (isTable_)
        line = "formula";
    else
        Write(*formula_, line);
    formula_ = std::make_unique<Node>();
    open_ = {formula_.get()};
    tokens_ = 0;
    isTable_ = false;
    return line;
}

void FormulaText::WriteToken(std::string_view token, std::string& line) {
    const std::size_t first = token.find_first_not_of(" \t\r\n");
    if (first == std::string_view::npos)
        return;
    token = token.substr(first, token.find_last_not_of(" \t\r\n") + 1 - first);
    if (IsAnyOf(token, kUnseen))
        return;
    const bool isOpen = line.empty() || line.back() == ' ' || line == "−" || line == "-" ||
                        std::any_of(std::begin(kOpening), std::end(kOpening),
                                    [&line](auto sign) { return line.ends_with(sign); });
    if (!isOpen && !IsAnyOf(token, kClosing) && token != "(")
        line += ' ';
    line += token;
}

// In brackets where it is more than one thing.
void FormulaText::WriteGroup(const Node& node, std::string& line) {
    std::string group;
    Write(node, group);
    if (group.find(' ') != std::string::npos && !group.starts_with('('))
        group = "(" + group + ")";
    line += group;
}

void FormulaText::Write(const Node& node, std::string& line) {
    const auto child = [&node](std::size_t at) -> const Node* {
        return at < node.children.size() ? node.children[at].get() : nullptr;
    };
    switch (node.part) {
        case Part::kToken:
            return WriteToken(node.text, line);
        case Part::kRaised:
        case Part::kLowered: {
            if (child(0) != nullptr)
                Write(*child(0), line);
            std::string script;
            if (child(1) != nullptr)
                WriteGroup(*child(1), script);
            if (const std::string digits = WithPlainMinus(script);
                node.part == Part::kRaised && CanBeRaised(digits))
                line += Raised(digits);
            else if (node.part == Part::kRaised && !script.empty())
                line += script == "′" || script == "°" ? script : "^" + script;
            else if (!script.empty())
                line += " " + script;
            return;
        }
        case Part::kFraction: {
            std::string fraction;
            if (child(0) != nullptr)
                WriteGroup(*child(0), fraction);
            fraction += '/';
            if (child(1) != nullptr)
                WriteGroup(*child(1), fraction);
            return WriteToken(fraction, line);
        }
        case Part::kRoot: {
            std::string root = "√";
            if (child(0) != nullptr)
                WriteGroup(*child(0), root);
            return WriteToken(root, line);
        }
        case Part::kRow:
        case Part::kTable:
            for (const auto& part : node.children)
                Write(*part, line);
    }
}

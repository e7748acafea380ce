#include "documents/page_styles.h"

#include <algorithm>
#include <optional>

#include "documents/small_texts.h"
#include "foundation/white_space.h"

namespace {

constexpr std::size_t kMostSelectors = 4096;
constexpr std::size_t kLongestSelector = 80;

constexpr SortedNames<6> kLines = {"block", "flow-root", "list-item",
                                   "table", "table-row", "table-row-group"};
constexpr SortedNames<4> kSideBySide = {"flex", "grid", "inline-flex", "inline-grid"};
static_assert(std::is_sorted(kLines.begin(), kLines.end()));
static_assert(std::is_sorted(kSideBySide.begin(), kSideBySide.end()));

PageLayout LayoutNamed(std::string_view name) {
    const bool partsChildren = IsOneOf(name, kSideBySide);
    return {IsOneOf(name, kLines) || (partsChildren && !name.starts_with("inline")), partsChildren};
}

// Of common style sheets: "block", "d-flex".
PageLayout LayoutByClass(std::string_view name) {
    name.remove_prefix(name.starts_with("d-") ? 2 : 0);
    return name == "table" ? PageLayout() : LayoutNamed(name);
}

// Calls for each part between the signs, without blanks around it.
template <typename Take>
void ForEachPart(std::string_view text, std::string_view signs, Take take) {
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find_first_of(signs, at), text.size());
        if (const std::string_view part = Trimmed(text.substr(at, end - at)); !part.empty())
            take(part);
        at = end + 1;
    }
}

// What the declarations say of it; nothing when they do not.
std::optional<PageLayout> LayoutBy(std::string_view declarations) {
    constexpr std::string_view kDisplay = "display";
    std::optional<PageLayout> layout;
    if (declarations.find(kDisplay) != std::string_view::npos)
        ForEachPart(declarations, ";", [&](std::string_view declaration) {
            const std::size_t colon = declaration.find(':');
            if (colon == std::string_view::npos ||
                Trimmed(declaration.substr(0, colon)) != kDisplay)
                return;
            const std::string_view value = Trimmed(declaration.substr(colon + 1));
            layout = LayoutNamed(value.substr(0, value.find_first_of(" !")));
        });
    return layout;
}

// "span.line", ".line", "span".
bool IsSimple(std::string_view selector) {
    constexpr std::string_view kNameSigns =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
    return selector.size() <= kLongestSelector &&
           selector.find_first_not_of(kNameSigns) == std::string_view::npos &&
           std::ranges::count(selector, '.') <= 1;
}

}  // namespace

void PageStyles::Learn(std::string_view css) {
    css = css.substr(0, kMostBytes - learnt_);
    learnt_ += css.size();
    std::string rules;
    for (std::size_t at = 0; at < css.size();) {
        const std::size_t begin = std::min(css.find("/*", at), css.size());
        rules += css.substr(at, begin - at);
        const std::size_t end = css.find("*/", std::min(begin + 2, css.size()));
        at = end == std::string_view::npos ? css.size() : end + 2;
    }
    const std::string_view text = rules;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t open = text.find_first_of("{;", at);
        if (open == std::string_view::npos)
            return;
        const std::string_view head = Trimmed(text.substr(at, open - at));
        at = open + 1;
        if (text[open] == ';')  // "@import url(x);"
            continue;
        // What "@media" and the like hold is for some screens or for paper.
        int depth = 1;
        const std::size_t body = at;
        for (; at < text.size() && depth > 0; ++at)
            depth += text[at] == '{' ? 1 : text[at] == '}' ? -1 : 0;
        if (depth == 0 && !head.starts_with('@'))
            LearnRule(head, text.substr(body, at - 1 - body));
    }
}

void PageStyles::LearnRule(std::string_view selectors, std::string_view body) {
    const std::optional<PageLayout> layout = LayoutBy(body);
    if (!layout)
        return;
    ForEachPart(selectors, ",", [&](std::string_view selector) {
        if (IsSimple(selector) && layouts_.size() < kMostSelectors)
            layouts_.insert_or_assign(std::string(selector), *layout);
    });
}

PageLayout PageStyles::LayoutOf(std::string_view name, const MarkupAttributes& attributes) const {
    if (const std::optional<PageLayout> layout = LayoutBy(attributes.Value("style")))
        return *layout;
    PageLayout found;
    const auto look = [this, &found](const std::string& selector) {
        if (const auto layout = layouts_.find(selector); layout != layouts_.end())
            found = layout->second;
    };
    if (!layouts_.empty())
        look(std::string(name));
    ForEachPart(attributes.Value("class"), kWhiteSpace, [&](std::string_view word) {
        if (const PageLayout layout = LayoutByClass(word); layout.isLines || layout.partsChildren)
            found = layout;
        if (layouts_.empty())
            return;
        look("." + std::string(word));
        look(std::string(name) + "." + std::string(word));
    });
    return found;
}

#include <glib.h>

#include <algorithm>
#include <utility>

#include "documents/pdf_pages.h"

namespace {

// Of the lines' height beside it: how much higher an initial is, how far off these lines begin, and
// from where on it is a word of its own ("A man").
constexpr double kInitial = 1.6;
constexpr double kFarthest = 1.5;
constexpr double kOwnWord = 0.3;
constexpr std::size_t kMostInitials = 20;  // of a page: more are something else

bool IsCapital(const std::string& text) {
    const gunichar letter = g_utf8_get_char(text.c_str());
    return g_unichar_isupper(letter) && *g_utf8_next_char(text.c_str()) == '\0';
}

bool IsBeside(const PdfLine& line, const PdfLine& initial) {
    return line.height > 0 && initial.height > line.height * kInitial &&
           line.Middle() > initial.top && line.Middle() < initial.top + initial.height &&
           line.left - initial.right > -line.height / 2 &&
           line.left - initial.right < line.height * kFarthest;
}

// True when lines stand beside it, the highest of which it has begun then.
bool Join(PdfPage& page, const PdfLine& initial) {
    PdfLine* first = nullptr;
    for (PdfLine& line : page)
        if (IsBeside(line, initial) && (first == nullptr || line.top < first->top))
            first = &line;
    if (first == nullptr)
        return false;
    const bool isOwnWord = first->left - initial.right > first->height * kOwnWord;
    const std::string begin = initial.text + (isOwnWord ? " " : "");
    for (PdfLine::Gap& gap : first->gaps)
        gap.at += begin.size();
    first->text.insert(0, begin);
    // The others are not indented but make room.
    for (PdfLine& line : page)
        if (IsBeside(line, initial))
            line.left = std::min(initial.left, line.blockLeft);
    return true;
}

}  // namespace

void JoinInitials(PdfPage& page) {
    std::vector<PdfLine> initials;
    for (const PdfLine& line : page)
        if (line.height > 0 && IsCapital(line.text))
            initials.push_back(line);
    if (initials.size() > kMostInitials)
        return;
    for (const PdfLine& initial : initials) {
        const auto find = [&page, &initial] {
            return std::find_if(page.begin(), page.end(), [&initial](const PdfLine& line) {
                return line.text == initial.text && line.top == initial.top &&
                       line.left == initial.left;
            });
        };
        // A larger one beside it may have taken it.
        if (find() == page.end() || !Join(page, initial))
            continue;
        if (const auto joined = find(); joined != page.end())
            page.erase(joined);
    }
}

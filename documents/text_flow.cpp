#include "documents/text_flow.h"

#include <algorithm>

#include "documents/reading_watch.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n\f";
constexpr std::string_view kMinus = "\xe2\x88\x92";
constexpr std::string_view kSoftHyphen = "\xc2\xad";

}  // namespace

void TextFlow::Add(std::string_view text) {
    while (!text.empty()) {
        const std::size_t word = std::min(text.find_first_not_of(kBlanks), text.size());
        blank_ = blank_ || word > 0;
        text.remove_prefix(word);
        const std::size_t end = std::min(text.find_first_of(kBlanks), text.size());
        if (end > 0)
            AddWord(text.substr(0, end));
        text.remove_prefix(end);
    }
}

void TextFlow::AddLines(std::string_view text) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        Add(text.substr(0, end));
        EndLine();
        text.remove_prefix(end + 1);
    }
    Add(text);
}

void TextFlow::AddRaised(std::string_view text) {
    constexpr std::string_view kRaised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (character >= '0' && character <= '9')
            Add(kRaised[character - '0']);
        else if (character == '-' || text.substr(at).starts_with(kMinus))
            Add("⁻");
        else
            Add(text.substr(at, 1));
        if (text.substr(at).starts_with(kMinus))
            at += kMinus.size() - 1;
    }
}

void TextFlow::EndLine() {
    lineEnds_ = std::min(lineEnds_ + 1, 2);
}

void TextFlow::EndParagraph() {
    lineEnds_ = 2;
}

bool TextFlow::IsTooLong() const {
    return text_.size() > kLargestDocumentText;
}

void TextFlow::AddWord(std::string_view word) {
    if (text_.empty()) {
        // Nothing to part it from.
    } else if (lineEnds_ > 0) {
        text_.append(static_cast<std::size_t>(lineEnds_), '\n');
    } else if (cellEnded_) {
        const bool isParted =
            std::string_view(".,:;!?").find(text_.back()) != std::string_view::npos;
        text_ += isParted ? " " : ", ";
    } else if (blank_) {
        // A word that was divided at the end of a line of the source.
        if (text_.ends_with(kSoftHyphen))
            text_.resize(text_.size() - kSoftHyphen.size());
        else
            text_ += ' ';
    }
    blank_ = false;
    lineEnds_ = 0;
    cellEnded_ = false;
    text_ += word;
}

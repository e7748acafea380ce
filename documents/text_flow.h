// Collects the text of a marked-up document as somebody would type it: words parted by one blank,
// lines, and paragraphs with an empty line between, which is a pause when it is read.
#pragma once

#include <string>
#include <string_view>

class TextFlow {
public:
    // UTF-8. White space in it parts words, however much there is.
    void Add(std::string_view text);
    // The same, but line ends in it count.
    void AddLines(std::string_view text);
    // Digits above the line become such of their own, so that a power is told from a number.
    void AddRaised(std::string_view text);
    void EndLine();
    void EndParagraph();
    // In a row of a table: a comma parts it from the next one.
    void EndCell() { cellEnded_ = true; }

    bool IsTooLong() const;
    std::string Take() { return std::move(text_); }

private:
    void AddWord(std::string_view word);

    std::string text_;
    bool blank_ = false;  // before the next word
    int lineEnds_ = 0;
    bool cellEnded_ = false;
};

// Collects the text of a marked-up document as somebody would type it: words parted by one blank,
// lines, and paragraphs with an empty line between, which is a pause when it is read. Remembers
// where its headings, pages and languages begin.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "documents/document.h"

class TextFlow {
public:
    explicit TextFlow(bool keepsReferenceMarks = false) : keepsMarks_(keepsReferenceMarks) {}

    // UTF-8. White space in it parts words, however much there is. "[12]" right behind a word,
    // which points to a source, goes, unless such marks are kept or code is being read.
    void Add(std::string_view text);
    // The same, but line ends in it count.
    void AddLines(std::string_view text);
    // Digits above the line become such of their own, so that a power is told from a number.
    void AddRaised(std::string_view text);
    // Says what a picture shows; a caption behind it that only repeats that is not said again.
    void AddPicture(std::string_view description);
    void AddBlank() { blank_ = true; }
    // A list's number, which stands before the next word in a new paragraph.
    void AddListMark(std::string_view mark);
    void EndLine();
    void EndOpenLine();  // nothing where a line has ended
    void EndParagraph();
    // In a row of a table: a comma parts it from the next one.
    void EndCell() { cellEnded_ = true; }
    // What comes next belongs to the last word, whatever was ended meanwhile.
    void Glue();
    void SetCode(bool isCode);

    void BeginHeading(int level);  // 1 to 6; a paragraph of its own
    void EndHeading();
    void BeginPage() { isPageBegun_ = true; }
    void BeginChapter(std::string_view title);
    // Of what comes next; empty where the document says nothing.
    void SetLanguage(std::string_view tag) { language_ = tag; }
    const std::string& Language() const { return language_; }
    // Adds all of another flow as paragraphs.
    void Append(Document&& part);

    bool IsTooLong() const;
    std::size_t Size() const { return text_.size(); }
    std::string_view Text() const { return text_; }
    std::string Take();
    // The text with what was remembered; nothing else of the document is filled in.
    Document TakeDocument();

private:
    void AddWord(std::string_view word);
    void PartFromLast();
    void NoteWhatBegins();
    void DropRepeatedCaption();
    void DropReferenceMarks();
    bool DropReferenceMark();

    std::string text_;
    Document structure_;  // without its text
    bool keepsMarks_;
    bool blank_ = false;  // before the next word
    std::string listMark_;
    int lineEnds_ = 0;
    bool cellEnded_ = false;
    // Of the last picture's description, while what follows it may be the same; equal: none.
    std::size_t pictureBegin_ = 0;
    std::size_t pictureEnd_ = 0;
    bool isCode_ = false;
    std::size_t codeEnd_ = 0;  // where the last code ended
    bool isPageBegun_ = false;
    std::optional<std::string> chapter_;      // begins with the next word
    std::string language_;                    // of the next word
    int nextHeading_ = 0;                     // level of the heading that begins with the next word
    std::optional<DocumentHeading> heading_;  // that has begun
};

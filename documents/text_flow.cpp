#include "documents/text_flow.h"

#include <glib.h>

#include <algorithm>
#include <utility>

#include "documents/reading_watch.h"
#include "documents/small_texts.h"

namespace {

constexpr std::string_view kMinusSign = "\xe2\x88\x92";
constexpr std::string_view kSoftHyphen = "\xc2\xad";
constexpr std::size_t kLongestMark = 24;
constexpr int kLowestLevel = 6;

// "1", "12,15-17"; a longer number is a year, or digits to choose from.
bool AreNumbersOfNotes(std::string_view mark) {
    constexpr std::size_t kMostDigits = 3;
    std::size_t digits = 0;
    for (const char sign : mark) {
        digits = g_ascii_isdigit(sign) ? digits + 1 : 0;
        if (digits > kMostDigits)
            return false;
    }
    return !mark.empty() && mark.size() <= 11 &&
           mark.find_first_not_of("0123456789,-\xe2\x80\x93 ") == std::string_view::npos &&
           g_ascii_isdigit(mark.front()) && g_ascii_isdigit(mark.back());
}

// "12", "note 3", "a", "citation needed": what stands between the brackets of a reference.
bool IsReference(std::string_view mark) {
    constexpr std::string_view kWords[] = {"note ", "nb ",   "n ",          "fn ",
                                           "Note ", "Anm. ", "lower-alpha "};
    for (const std::string_view word : kWords)
        if (mark.starts_with(word)) {
            mark.remove_prefix(word.size());
            break;
        }
    if (mark == "citation needed")
        return true;
    if (mark.size() == 1 && g_ascii_islower(mark[0]))
        return true;
    return AreNumbersOfNotes(mark);
}

// What programs put in where nobody has described the picture.
bool IsFileName(std::string_view description) {
    if (description.starts_with("fig: "))
        description.remove_prefix(5);
    for (const std::string_view ending : {".jpg", ".jpeg", ".png", ".gif", ".svg", ".webp"})
        if (description.ends_with(ending) && description.find(' ') == std::string_view::npos)
            return true;
    return false;
}

}  // namespace

void TextFlow::Add(std::string_view text) {
    while (!text.empty()) {
        const std::size_t word = std::min(text.find_first_not_of(kWhiteSpace), text.size());
        blank_ = blank_ || word > 0;
        text.remove_prefix(word);
        const std::size_t end = std::min(text.find_first_of(kWhiteSpace), text.size());
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
    const std::size_t sign = text.starts_with('-')          ? 1
                             : text.starts_with(kMinusSign) ? kMinusSign.size()
                                                            : 0;
    if (sign >= text.size() || !g_ascii_isdigit(text[sign]))
        return Add(text);
    constexpr std::string_view kRaised[] = {"⁰", "¹", "²", "³", "⁴", "⁵", "⁶", "⁷", "⁸", "⁹"};
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char character = text[at];
        if (character >= '0' && character <= '9')
            Add(kRaised[character - '0']);
        else if (character == '-' || text.substr(at).starts_with(kMinusSign))
            Add("⁻");
        else
            Add(text.substr(at, 1));
        if (text.substr(at).starts_with(kMinusSign))
            at += kMinusSign.size() - 1;
    }
}

void TextFlow::AddPicture(std::string_view description) {
    if (description.find_first_not_of(kWhiteSpace) == std::string_view::npos ||
        IsFileName(description))
        return;
    // A sign that is shown as a picture.
    if (description.size() <= 8 && std::none_of(description.begin(), description.end(), [](char c) {
            return g_ascii_isalnum(c) || c == ' ';
        }))
        return Add(description);
    AddBlank();
    Add("Picture:");
    pictureBegin_ = text_.size() + 1;
    AddBlank();
    Add(description);
    pictureEnd_ = text_.size();
    AddBlank();
}

void TextFlow::DropRepeatedCaption() {
    const std::size_t caption = text_.find_first_not_of(" \n", pictureEnd_);
    if (pictureBegin_ >= pictureEnd_ || caption == std::string::npos)
        return;
    const std::string_view description =
        std::string_view(text_).substr(pictureBegin_, pictureEnd_ - pictureBegin_);
    const auto endsBefore = [caption](const auto& list) {
        return list.empty() || list.back().begin < caption;
    };
    const bool nothingBegins = endsBefore(structure_.chapters) &&
                               endsBefore(structure_.languages) &&
                               endsBefore(structure_.headings) && !heading_ &&
                               (structure_.pages.empty() || structure_.pages.back() < caption);
    if (nothingBegins && std::string_view(text_).substr(caption) == description)
        text_.resize(pictureEnd_);
    pictureBegin_ = pictureEnd_ = 0;
}

void TextFlow::AddListMark(std::string_view mark) {
    EndParagraph();
    listMark_ = mark;
}

void TextFlow::EndLine() {
    lineEnds_ = std::min(lineEnds_ + 1, 2);
}

void TextFlow::EndOpenLine() {
    lineEnds_ = std::max(lineEnds_, 1);
}

void TextFlow::EndParagraph() {
    lineEnds_ = 2;
}

void TextFlow::Glue() {
    lineEnds_ = 0;
    blank_ = cellEnded_ = false;
}

void TextFlow::BeginHeading(int level) {
    EndHeading();
    EndParagraph();
    nextHeading_ = std::clamp(level, 1, kLowestLevel);
}

void TextFlow::EndHeading() {
    if (heading_) {
        heading_->end = text_.size();
        structure_.headings.push_back(*heading_);
        heading_.reset();
    }
    nextHeading_ = 0;
    EndParagraph();
}

void TextFlow::BeginChapter(std::string_view title) {
    EndParagraph();
    chapter_ = title;
}

void TextFlow::Append(Document&& part) {
    if (part.text.empty())
        return;
    EndHeading();
    PartFromLast();
    const std::string language = language_;
    if (!part.languages.empty())
        language_ = part.languages.front().tag;
    NoteWhatBegins();
    language_ = language;
    const std::size_t begin = text_.size();
    text_ += part.text;
    for (DocumentHeading& heading : part.headings)
        structure_.headings.push_back({heading.begin + begin, heading.end + begin, heading.level});
    for (const std::size_t page : part.pages)
        structure_.pages.push_back(page + begin);
    for (DocumentLanguage& place : part.languages)
        if (place.begin > 0)
            structure_.languages.push_back({place.begin + begin, std::move(place.tag)});
    EndParagraph();
}

bool TextFlow::IsTooLong() const {
    return text_.size() > kLargestDocumentText;
}

std::string TextFlow::Take() {
    DropRepeatedCaption();
    return std::move(text_);
}

Document TextFlow::TakeDocument() {
    EndHeading();
    structure_.text = Take();
    return std::move(structure_);
}

void TextFlow::SetCode(bool isCode) {
    if (isCode_ && !isCode)
        codeEnd_ = text_.size();
    isCode_ = isCode;
}

void TextFlow::AddWord(std::string_view word) {
    PartFromLast();
    NoteWhatBegins();
    if (!listMark_.empty())
        text_ += std::exchange(listMark_, {}) + " ";
    text_ += word;
    if (!keepsMarks_ && !isCode_)
        DropReferenceMarks();
}

void TextFlow::PartFromLast() {
    if (lineEnds_ > 0)
        DropRepeatedCaption();
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
}

// At the place where the next word stands.
void TextFlow::NoteWhatBegins() {
    const std::size_t begin = text_.size();
    if (chapter_) {
        structure_.chapters.push_back({begin, std::move(*chapter_)});
        chapter_.reset();
    }
    if (isPageBegun_)
        structure_.pages.push_back(begin);
    isPageBegun_ = false;
    const std::string_view last =
        structure_.languages.empty() ? std::string_view() : structure_.languages.back().tag;
    if (language_ != last)
        structure_.languages.push_back({begin, language_});
    if (nextHeading_ > 0)
        heading_ = {begin, begin, nextHeading_};
    nextHeading_ = 0;
}

// Those that the last word ends with, also before its punctuation: "word[1][2],".
void TextFlow::DropReferenceMarks() {
    const std::size_t end = text_.find_last_not_of(".,;:!?)\"'") + 1;
    if (end == 0 || text_[end - 1] != ']')
        return;
    const std::string behind = text_.substr(end);
    text_.resize(end);
    while (!text_.empty() && text_.back() == ']' && DropReferenceMark()) {
    }
    text_ += behind;
}

// A "[12]" right behind a word, at the text's end.
bool TextFlow::DropReferenceMark() {
    const std::size_t from = text_.size() - std::min(text_.size(), kLongestMark);
    const std::size_t open = text_.rfind('[');
    if (open == std::string::npos || open <= from || open < std::max<std::size_t>(codeEnd_, 1))
        return false;
    const auto before = static_cast<unsigned char>(text_[open - 1]);
    const bool isBehindWord =
        before >= 0x80 || g_ascii_isalnum(static_cast<char>(before)) ||
        std::string_view(".,;:!?)]\"'%").find(text_[open - 1]) != std::string_view::npos;
    const bool isInHeading = heading_ && heading_->begin >= open;
    if (!isBehindWord || isInHeading ||
        !IsReference(std::string_view(text_).substr(open + 1, text_.size() - open - 2)))
        return false;
    text_.resize(open);
    return true;
}

#include "speech/sentences.h"

#include <unicode/ubrk.h>
#include <unicode/utext.h>

#include <algorithm>
#include <map>
#include <mutex>

#include "foundation/whole_characters.h"
#include "speech/abbreviations.h"
#include "speech/language_words.h"
#include "speech/paragraph_lines.h"
#include "speech/sentence_rules.h"
#include "speech/sentence_words.h"
#include "speech/text_language.h"

namespace {

constexpr std::size_t kWindow = 4096;  // no sentence is longer on purpose
constexpr std::string_view kWhiteBytes = " \t\r\n\f\v";

constexpr std::size_t kEnoughToTell = 2000;
// Of a paragraph. Fewer bytes seldom show a language.
constexpr std::size_t kEnoughOfParagraph = 400;
constexpr std::size_t kLeastToTell = 40;
constexpr std::size_t kWhiteAround = 16;  // that a text of one paragraph may have besides
constexpr std::size_t kMostBreakers = 8;
constexpr std::size_t kMostLanguages = 64;

// What shows surely, else what its small words look like.
std::string LanguageSeenIn(std::string_view text, std::string_view likely) {
    const std::string tag = LanguageOf(WholeCharacters(text, kEnoughToTell)).tag;
    return tag.empty() ? std::string(GuessLanguage(text, LanguageOnly(likely))) : tag;
}

// Of a language once: reading the lists takes longer than a sentence does. Any thread.
std::shared_ptr<const Abbreviations> AbbreviationsOf(const std::string& language) {
    static std::mutex mutex;
    static auto* const known = new std::map<std::string, std::shared_ptr<const Abbreviations>>;
    const std::lock_guard<std::mutex> lock(mutex);
    if (const auto found = known->find(language); found != known->end())
        return found->second;
    if (known->size() == kMostLanguages)  // a document may name any number
        known->clear();
    return known->emplace(language, std::make_shared<const Abbreviations>(language)).first->second;
}

// The end of the paragraph at the beginning of the text: behind it stands an
// empty line.
std::size_t ParagraphEnd(std::string_view text) {
    for (std::size_t at = text.find('\n'); at != std::string_view::npos;
         at = text.find('\n', at + 1)) {
        const std::size_t next = text.find_first_not_of(" \t\r\f\v", at + 1);
        if (next == std::string_view::npos || text[next] == '\n')
            return at;
    }
    return text.size();
}

// Not within a word or a character.
std::size_t CutBefore(std::string_view text, std::size_t most) {
    std::size_t cut = text.find_last_of(kWhiteBytes, most - 1);
    const bool isWithinWord = cut == std::string_view::npos || cut < most / 2;
    return isWithinWord ? WholeCharacters(text, most).size() : cut;
}

class BreakIterator {
public:
    explicit BreakIterator(const std::string& locale) {
        UErrorCode error = U_ZERO_ERROR;
        breaks_ = ubrk_open(UBRK_SENTENCE, locale.c_str(), nullptr, 0, &error);
        if (U_FAILURE(error) != 0)
            breaks_ = nullptr;
    }
    ~BreakIterator() {
        ubrk_close(breaks_);
        utext_close(text_);
    }
    BreakIterator(const BreakIterator&) = delete;
    BreakIterator& operator=(const BreakIterator&) = delete;

    // Byte positions of the ends; the text outlives the iterator's next call.
    std::vector<std::size_t> In(const std::string& text) {
        std::vector<std::size_t> ends;
        UErrorCode error = U_ZERO_ERROR;
        text_ = utext_openUTF8(text_, text.data(), static_cast<std::int64_t>(text.size()), &error);
        if (breaks_ != nullptr && U_SUCCESS(error) != 0)
            ubrk_setUText(breaks_, text_, &error);
        if (breaks_ != nullptr && U_SUCCESS(error) != 0)
            for (std::int32_t at = ubrk_next(breaks_); at != UBRK_DONE; at = ubrk_next(breaks_))
                ends.push_back(static_cast<std::size_t>(at));
        if (ends.empty() || ends.back() != text.size())
            ends.push_back(text.size());
        return ends;
    }

private:
    UBreakIterator* breaks_ = nullptr;
    UText* text_ = nullptr;
};

}  // namespace

class Sentences::Breaker {
public:
    explicit Breaker(const std::string& language)
        : language_(language), breaks_(language_), abbreviations_(AbbreviationsOf(language_)) {}

    // Where sentences begin in a part of a paragraph, the first byte apart.
    std::vector<std::size_t> StartsIn(std::string_view part) {
        const ParagraphLines lines(part);
        const SentenceRules rules(lines.Joined(), language_);
        std::vector<std::size_t> starts = rules.OwnStarts();
        for (const std::size_t end : breaks_.In(lines.Joined()))
            starts.push_back(rules.StartBehind(end, abbreviations_->EndAt(lines.Joined(), end)));
        starts.insert(starts.end(), lines.Starts().begin(), lines.Starts().end());
        std::ranges::sort(starts);
        starts.erase(std::unique(starts.begin(), starts.end()), starts.end());
        return starts;
    }

    const std::string& Language() const { return language_; }

private:
    const std::string language_;
    BreakIterator breaks_;
    const std::shared_ptr<const Abbreviations> abbreviations_;
};

Sentences::Sentences(std::string_view text, std::string_view language, std::string_view likely)
    : text_(text),
      isGuessed_(language.empty()),
      language_(isGuessed_ ? LanguageSeenIn(text, likely)
                           : std::string(language.substr(0, language.find_first_of("-_")))) {}

Sentences::~Sentences() = default;
Sentences::Sentences(Sentences&&) noexcept = default;
Sentences& Sentences::operator=(Sentences&&) noexcept = default;

bool Sentences::Next(Sentence& sentence) {
    while (found_.empty() && at_ < text_.size())
        FillWindow();
    if (found_.empty())
        return false;
    sentence = found_.front();
    found_.pop_front();
    return true;
}

Sentences::Breaker& Sentences::BreakerFor(std::string_view part) {
    std::string language = language_;
    const bool isAll = part.size() + kWhiteAround > std::min(text_.size(), kEnoughToTell);
    if (isGuessed_ && part.size() >= kLeastToTell && !(at_ < kWhiteAround && isAll)) {
        const std::string_view enough = WholeCharacters(part, kEnoughOfParagraph);
        const TextLanguage seen =
            IsShownByWords(enough, language_) ? TextLanguage{language_} : LanguageOf(enough);
        // Of what is much alike the sentence ends are, too.
        if (!seen.tag.empty() && (seen.isSure || !AreMuchAlike(seen.tag, language)))
            language = seen.tag;
    }
    auto known =
        std::ranges::find(breakers_, language, [](const auto& one) { return one->Language(); });
    if (known == breakers_.end()) {
        if (breakers_.size() == kMostBreakers)
            breakers_.clear();
        known = breakers_.insert(breakers_.end(), std::make_unique<Breaker>(language));
    }
    return **known;
}

void Sentences::FillWindow() {
    at_ = std::min(text_.find_first_not_of(kWhiteBytes, at_), text_.size());
    const std::string_view ahead = text_.substr(at_, kWindow);
    const std::size_t paragraph = ParagraphEnd(ahead);
    const bool isWhole = paragraph < ahead.size() || at_ + ahead.size() == text_.size();
    const std::string_view part =
        isWhole ? ahead.substr(0, paragraph) : ahead.substr(0, CutBefore(ahead, ahead.size() - 1));
    std::vector<std::size_t> starts =
        part.empty() ? std::vector<std::size_t>{} : BreakerFor(part).StartsIn(part);
    std::erase_if(starts, [&](std::size_t start) { return start == 0 || start >= part.size(); });
    // What follows may yet belong to the last one of a part.
    const std::size_t end = isWhole || starts.empty() ? part.size() : starts.back();
    std::size_t begin = 0;
    starts.push_back(end);
    for (const std::size_t next : starts) {
        const std::string_view sentence = part.substr(begin, next - begin);
        const std::size_t first = sentence.find_first_not_of(kWhiteBytes);
        if (first != std::string_view::npos && begin < end)
            found_.push_back({at_ + begin + first,
                              at_ + begin + sentence.find_last_not_of(kWhiteBytes) + 1,
                              begin == 0 && wasCut_});
        begin = next;
    }
    wasCut_ = !isWhole && starts.size() == 1;
    at_ += std::max<std::size_t>(end, ahead.empty() ? 0 : 1);
}

std::vector<Sentence> SentencesOf(std::string_view text, std::string_view language) {
    std::vector<Sentence> all;
    Sentences sentences(text, language);
    for (Sentence sentence{}; sentences.Next(sentence);)
        all.push_back(sentence);
    return all;
}

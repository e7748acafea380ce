#include "speech/voice_stretches.h"

#include <algorithm>
#include <utility>

namespace {

// What is looked at together; a first sentence is not kept waiting for more.
constexpr std::size_t kMostTogether = 2000;
constexpr std::size_t kMostSentences = 30;
constexpr std::size_t kMostInOne = 64 << 10;

}  // namespace

std::vector<LanguageMark> MarksFrom(const std::vector<LanguageMark>& marks, std::size_t begin) {
    std::vector<LanguageMark> rest;
    for (const LanguageMark& mark : marks) {
        if (mark.begin <= begin)
            rest.clear();
        rest.push_back({mark.begin < begin ? 0 : mark.begin - begin, mark.tag});
    }
    return rest;
}

VoiceStretches::VoiceStretches(std::string_view text, int voice, bool byLanguage,
                               std::vector<LanguageMark> marks)
    : text_(text),
      voice_(voice),
      voiceLanguage_(LanguageOnly(VoiceAt(voice).language)),
      // Of a voice whose language nobody knows nobody knows either whether it is the wrong one.
      byLanguage_(byLanguage && !voiceLanguage_.empty()),
      marks_(std::move(marks)),
      sentences_(text, {}, voiceLanguage_.empty() ? "en" : voiceLanguage_),
      language_(voiceLanguage_) {}

bool VoiceStretches::Next(VoiceStretch& stretch) {
    if (ready_.empty() && !Fill())
        return false;
    stretch = std::move(ready_.front());
    ready_.pop_front();
    // The first one is wanted at once; later each costs its reader a start.
    while (stretch.end - stretch.begin < enough_ && (!ready_.empty() || Fill()) &&
           ready_.front().voice == stretch.voice) {
        stretch.end = ready_.front().end;
        if (ready_.front().language != stretch.language)
            stretch.language.clear();
        ready_.pop_front();
    }
    enough_ = std::min(2 * enough_ + kMostTogether, kMostInOne);
    return true;
}

bool VoiceStretches::Fill() {
    if (givenTo_ == text_.size())
        return false;
    if (!byLanguage_)
        ready_.push_back({0, text_.size(), voice_});
    else
        AddParagraph();
    if (ready_.empty())  // only white space is left
        ready_.push_back({givenTo_, text_.size(), voice_});
    givenTo_ = ready_.back().end;
    return true;
}

// Up to the next empty line: its sentences mostly are of one language.
void VoiceStretches::AddParagraph() {
    std::vector<Sentence> paragraph;
    while (true) {
        Sentence next{};
        if (!ahead_ && sentences_.Next(next))
            ahead_ = next;
        if (!ahead_ || paragraph.size() == kMostSentences)
            break;
        if (!paragraph.empty()) {
            const std::size_t end = paragraph.back().end;
            const std::string_view gap = text_.substr(end, ahead_->begin - end);
            if (std::ranges::count(gap, '\n') > 1 ||
                ahead_->end - paragraph.front().begin > kMostTogether)
                break;
        }
        paragraph.push_back(*std::exchange(ahead_, std::nullopt));
    }
    if (!paragraph.empty())
        AddSentences(paragraph);
}

void VoiceStretches::AddSentences(const std::vector<Sentence>& paragraph) {
    const auto languageOf = [this](std::size_t begin, std::size_t end) {
        return WithVoice(LanguageOf(text_.substr(begin, end - begin)));
    };
    const std::size_t begin = paragraph.front().begin;
    std::optional<TextLanguage> whole;  // asked for by sentences that do not tell, or not surely
    for (const Sentence& sentence : paragraph) {
        const TextLanguage seen = languageOf(sentence.begin, sentence.end);
        const std::string marked = MarkedLanguage(sentence.begin);
        std::string own = seen.tag.empty() ? marked : Judge(seen, marked);
        if (!whole && !seen.isLong)
            whole = languageOf(begin, paragraph.back().end);
        if (seen.tag.empty() && marked == MarkedLanguage(begin))
            own = Judge(*whole, marked);
        else if (!seen.tag.empty() && !seen.isLong && AreMuchAlike(seen.tag, whole->tag))
            own = Judge(*whole, marked);
        if (!own.empty())
            language_ = std::move(own);
        const int voice = VoiceOf(language_);
        if (!ready_.empty() && ready_.back().voice != voice) {
            ready_.back().end = sentence.begin;  // white space belongs to what stands before it
            ready_.push_back({sentence.begin, sentence.end, voice, language_});
        } else if (ready_.empty()) {
            ready_.push_back({givenTo_, sentence.end, voice, language_});
        } else if (ready_.back().language != language_) {
            ready_.back().language.clear();
        }
    }
    ready_.back().end = ahead_ ? ahead_->begin : text_.size();
}

// Who has no Norwegian voice does not see Danish taken for it, and a listing that looks a little
// like Javanese is no reason to tell of a voice that is missing.
TextLanguage VoiceStretches::WithVoice(TextLanguage seen) {
    const auto hasVoice = [this](const std::string& language) {
        return language == voiceLanguage_ || voices_.Of(language) >= 0;
    };
    if (seen.tag.empty() || hasVoice(seen.tag))
        return seen;
    const auto other = std::ranges::find_if(seen.orElse, hasVoice);
    if (other != seen.orElse.end())
        seen.tag = *other;
    else if (!seen.isSure && std::ranges::none_of(SpokenAlike(seen.tag), [&](auto alike) {
                 return hasVoice(std::string(alike));
             }))
        return {};
    return seen;
}

// The language of what was looked at; empty when nothing tells it.
std::string VoiceStretches::Judge(const TextLanguage& seen, const std::string& marked) const {
    const std::string& expected = marked.empty() ? language_ : marked;
    if (seen.tag.empty())
        return marked;
    const std::vector<std::string_view> alike = SpokenAlike(seen.tag);
    if (std::ranges::find(alike, expected) != alike.end() ||
        ((!seen.isLong || !seen.isSure) && AreMuchAlike(seen.tag, expected)))
        return expected;
    return seen.tag;
}

std::string VoiceStretches::MarkedLanguage(std::size_t place) const {
    const auto next = std::ranges::upper_bound(marks_, place, {}, &LanguageMark::begin);
    return next == marks_.begin() ? "" : std::string(LanguageOnly(std::prev(next)->tag));
}

int VoiceStretches::VoiceOf(const std::string& language) {
    if (language == voiceLanguage_)
        return voice_;
    int voice = voices_.Of(language);
    for (const std::string_view other : SpokenAlike(language))
        if (voice < 0)
            voice = other == voiceLanguage_ ? voice_ : voices_.Of(other);
    if (voice >= 0)
        return voice;
    if (std::ranges::find(withoutVoice_, language) == withoutVoice_.end())
        withoutVoice_.push_back(language);
    return voice_;
}

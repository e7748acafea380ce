#include "speech/pronunciations.h"

#include <glib.h>

#include <algorithm>
#include <mutex>

#include "foundation/log/log.h"
#include "speech/spoken_address.h"

namespace {

constexpr std::size_t kLongestGap = 32;  // of blanks within a stretch

bool IsWordCharacter(gunichar character) {
    return g_unichar_isalnum(character) || g_unichar_ismark(character);
}

// Of scripts that part no words each character is one.
bool StandsAlone(gunichar character) {
    switch (g_unichar_get_script(character)) {
        case G_UNICODE_SCRIPT_HAN:
        case G_UNICODE_SCRIPT_HIRAGANA:
        case G_UNICODE_SCRIPT_KATAKANA:
        case G_UNICODE_SCRIPT_THAI:
        case G_UNICODE_SCRIPT_LAO:
        case G_UNICODE_SCRIPT_KHMER:
        case G_UNICODE_SCRIPT_MYANMAR:
            return true;
        default:
            return false;
    }
}

// The character at a place and its bytes; an invalid byte is a character of its own.
gunichar CharacterAt(std::string_view text, std::size_t at, std::size_t& size) {
    const auto first = static_cast<unsigned char>(text[at]);
    size = 1;
    if (first < 0x80)
        return first;
    const auto left = static_cast<gssize>(std::min<std::size_t>(text.size() - at, 6));
    const gunichar character = g_utf8_get_char_validated(text.data() + at, left);
    if (character >= 0x80000000U)
        return 0;
    size = static_cast<std::size_t>(g_unichar_to_utf8(character, nullptr));
    return character;
}

// The word, or the single sign, that begins at a place which is no blank.
std::string_view WordAt(std::string_view text, std::size_t at) {
    std::size_t end = at;
    std::size_t size = 0;
    while (end < text.size()) {
        const gunichar character = CharacterAt(text, end, size);
        const bool isPart = IsWordCharacter(character) && !StandsAlone(character);
        if (end > at && !isPart)
            break;
        end += size;
        if (!isPart)
            break;
    }
    return text.substr(at, end - at);
}

bool IsWhite(std::string_view text, std::size_t at, std::size_t& size) {
    const gunichar character = CharacterAt(text, at, size);
    return character != 0 && g_unichar_isspace(character);
}

// Behind the white space there; nothing when an empty line or too much of it parts what follows.
std::optional<std::size_t> BehindGap(std::string_view text, std::size_t at) {
    const std::size_t begin = at;
    int lines = 0;
    for (std::size_t size = 0; at < text.size() && IsWhite(text, at, size); at += size)
        lines += text[at] == '\n' ? 1 : 0;
    if (lines > 1 || at - begin > kLongestGap || at == text.size())
        return std::nullopt;
    return at;
}

std::string Normal(std::string_view word, bool folded) {
    std::string ascii(word);
    if (std::ranges::all_of(word, [](unsigned char byte) { return byte < 0x80; })) {
        if (folded)
            std::ranges::transform(ascii, ascii.begin(), g_ascii_tolower);
        return ascii;
    }
    if (word == "’")
        return "'";
    char* const normal = g_utf8_normalize(word.data(), static_cast<gssize>(word.size()),
                                          G_NORMALIZE_DEFAULT_COMPOSE);
    if (normal == nullptr)
        return ascii;
    char* const cased = folded ? g_utf8_casefold(normal, -1) : nullptr;
    std::string result = cased != nullptr ? cased : normal;
    g_free(cased);
    g_free(normal);
    return result;
}

// All words with one blank between those that white space parts.
std::string NormalStretch(std::string_view text) {
    std::string normal;
    for (std::size_t at = 0; at < text.size();) {
        if (std::size_t size = 0; IsWhite(text, at, size)) {
            if (!normal.ends_with(' '))
                normal += ' ';
            at += size;
            continue;
        }
        const std::string_view word = WordAt(text, at);
        normal += Normal(word, false);
        at += word.size();
    }
    return normal;
}

// The lists are of the process, and so is their lock.
struct Loaded {
    std::mutex mutex;
    std::shared_ptr<const Pronunciations> list;
    std::string state;  // of the files
};
Loaded& TheLoaded() {
    static Loaded loaded;
    return loaded;
}

// "de" of "de-AT".
std::string_view Language(std::string_view tag) {
    return tag.substr(0, tag.find('-'));
}

}  // namespace

Pronunciations::Pronunciations(std::vector<Pronunciation> entries) : entries_(std::move(entries)) {
    for (std::uint32_t i = 0; i < entries_.size(); ++i) {
        if (!entries_[i].isPattern) {
            AddWords(i);
            continue;
        }
        PronunciationPattern pattern(entries_[i]);
        if (patterns_.size() == kMostPatterns)
            LOGWARNF("Speech: more than %zu patterns; left out: %s", kMostPatterns,
                     entries_[i].text.c_str());
        else if (!pattern.Problem().empty())
            LOGWARNF("Speech: %s: %s", entries_[i].text.c_str(), pattern.Problem().c_str());
        else
            patterns_.push_back({i, std::move(pattern)});
    }
}

void Pronunciations::AddWords(std::uint32_t entry) {
    const std::string_view text = entries_[entry].text;
    std::uint32_t node = 0;
    for (std::size_t at = 0; at < text.size();) {
        std::string step = " ";
        if (std::size_t size = 0; IsWhite(text, at, size)) {
            while (at < text.size() && IsWhite(text, at, size))
                at += size;
        } else {
            const std::string_view word = WordAt(text, at);
            step = Normal(word, true);
            at += word.size();
        }
        const auto [found, isNew] =
            nodes_[node].next.try_emplace(step, static_cast<std::uint32_t>(nodes_.size()));
        node = found->second;
        if (isNew)
            nodes_.emplace_back();
    }
    if (node != 0)
        nodes_[node].entries.push_back(entry);
}

std::shared_ptr<const Pronunciations> CurrentPronunciations() {
    Loaded& loaded = TheLoaded();
    const std::lock_guard<std::mutex> lock(loaded.mutex);
    if (const std::string now = PronunciationFilesState(); !loaded.list || now != loaded.state) {
        std::vector<Pronunciation> entries = LoadOwnPronunciations().entries;
        std::ranges::move(LoadMachinePronunciations().entries, std::back_inserter(entries));
        loaded.list = std::make_shared<Pronunciations>(std::move(entries));
        loaded.state = now;
    }
    return loaded.list;
}

SaidDifferently::SaidDifferently(std::shared_ptr<const Pronunciations> list, std::string_view text,
                                 std::string voice, std::string language)
    : list_(std::move(list)),
      text_(text),
      voice_(std::move(voice)),
      language_(std::move(language)) {
    if (list_ && list_->IsEmpty())
        list_.reset();
    if (!list_)
        return;
    for (const Pronunciations::Pattern& pattern : list_->patterns_)
        if (Holds(list_->entries_[pattern.entry]))
            patterns_.push_back({&pattern});
    if (!patterns_.empty())
        sentences_.emplace(text_);
}

bool SaidDifferently::Holds(const Pronunciation& entry) const {
    return RankOf(entry) >= 0;
}

// The closer an entry is to the voice, the higher; -1: it is for others.
int SaidDifferently::RankOf(const Pronunciation& entry) const {
    const std::string& where = entry.where;
    if (where.empty())
        return 0;
    if (where == voice_)
        return 3;
    if (where == language_)
        return 2;
    return where == Language(language_) ? 1 : -1;
}

std::optional<SaidDifferently::Stretch> SaidDifferently::At(std::size_t at) {
    if (auto listed = ListedAt(at))
        return listed;
    const auto address = saysHosts_ ? AddressAt(text_, at) : std::nullopt;
    return address ? std::optional(Stretch{address->end, address->host}) : std::nullopt;
}

std::optional<SaidDifferently::Stretch> SaidDifferently::ListedAt(std::size_t at) {
    if (!list_)
        return std::nullopt;
    if (const std::optional<Stretch> found = PatternAt(at))
        return found;
    if (at < wordEnd_)
        return std::nullopt;
    if (std::size_t size = 0; IsWhite(text_, at, size)) {
        wordEnd_ = at + size;
        return std::nullopt;
    }
    const std::string_view word = WordAt(text_, at);
    wordEnd_ = at + word.size();
    return WordsAt(at, word);
}

// Walks the words of the text and of the list side by side; the last entry that ended on the way is
// the longest.
std::optional<SaidDifferently::Stretch> SaidDifferently::WordsAt(std::size_t at,
                                                                 std::string_view firstWord) {
    std::optional<Stretch> longest;
    std::string_view word = firstWord;
    std::uint32_t node = 0;
    for (std::size_t end = at;;) {
        if (word.size() > kMostPronunciationBytes)
            break;
        const auto step = list_->nodes_[node].next.find(Normal(word, true));
        if (step == list_->nodes_[node].next.end())
            break;
        node = step->second;
        end += word.size();
        if (const Pronunciation* best =
                BestOf(list_->nodes_[node].entries, text_.substr(at, end - at)))
            longest = Stretch{end, best->said};
        const std::optional<std::size_t> next = BehindGap(text_, end);
        if (!next)
            break;
        if (*next > end) {
            const auto gap = list_->nodes_[node].next.find(" ");
            if (gap == list_->nodes_[node].next.end())
                break;
            node = gap->second;
            end = *next;
        }
        word = WordAt(text_, end);
    }
    if (longest)
        wordEnd_ = longest->end;
    return longest;
}

const Pronunciation* SaidDifferently::BestOf(const std::vector<std::uint32_t>& entries,
                                             std::string_view written) const {
    const Pronunciation* best = nullptr;
    for (const std::uint32_t index : entries) {
        const Pronunciation& entry = list_->entries_[index];
        const int rank = RankOf(entry);
        if (rank < 0 || (best != nullptr && rank <= RankOf(*best)))
            continue;
        if (!entry.heedsCase || NormalStretch(entry.text) == NormalStretch(written))
            best = &entry;
    }
    return best;
}

std::optional<SaidDifferently::Stretch> SaidDifferently::PatternAt(std::size_t at) {
    while (sentences_ && at >= searchedTo_)
        SearchNextSentence();
    while (nextMatch_ < matches_.size() && matches_[nextMatch_].begin < at)
        ++nextMatch_;
    if (nextMatch_ == matches_.size() || matches_[nextMatch_].begin != at)
        return std::nullopt;
    const PronunciationPattern::Match& match = matches_[nextMatch_];
    wordEnd_ = std::max(wordEnd_, match.end);
    return Stretch{match.end, match.said};
}

void SaidDifferently::SearchNextSentence() {
    matches_.clear();
    nextMatch_ = 0;
    Sentence sentence{};
    if (!sentences_->Next(sentence)) {
        sentences_.reset();
        return;
    }
    searchedTo_ = sentence.end;
    const std::string_view text = text_.substr(sentence.begin, sentence.end - sentence.begin);
    if (!g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr))
        return;  // an expression knows characters alone
    for (ActivePattern& each : patterns_) {
        if (each.isGivenUp || each.pattern->pattern.FindIn(text, matches_))
            continue;
        each.isGivenUp = true;
        givenUp_.push_back(list_->entries_[each.pattern->entry].text);
    }
    // Of those that begin at the same place the earlier entry counts.
    std::ranges::stable_sort(matches_, {}, &PronunciationPattern::Match::begin);
    for (PronunciationPattern::Match& match : matches_) {
        match.begin += sentence.begin;
        match.end += sentence.begin;
    }
}

std::string SayWith(Pronunciation entry, std::string_view text) {
    entry.where.clear();
    SaidDifferently differently(
        std::make_shared<Pronunciations>(std::vector<Pronunciation>{std::move(entry)}), text, "",
        "");
    std::string said;
    for (std::size_t at = 0; at < text.size();) {
        const auto stretch = differently.At(at);
        said += stretch ? stretch->said : text.substr(at, 1);
        at = stretch ? stretch->end : at + 1;
    }
    return said;
}

// What the rules of sentences know about languages: abbreviations, and words
// that begin sentences.
#pragma once

#include <optional>
#include <string_view>

// "de" for a text that is most likely German. By script, then by the small words among its first;
// where none of them is known, otherwise.
std::string_view GuessLanguage(std::string_view text, std::string_view otherwise);

// All take a word without its last stop, as it is written.
//
// Stands before a name or a number and so never ends a sentence: "Dr", "z.B",
// "т.е".
bool NeedsWhatFollows(std::string_view word, std::string_view language);
// The same before a number alone: "p" of "p. 55".
bool NeedsNumber(std::string_view word);
bool IsShortMonth(std::string_view word);  // "Jan", "juil"
// Stands behind something and may end a sentence: "Co", "Jr", "p.m".
bool MayEndSentence(std::string_view word);
// "etc", "usw": mostly does, before a capital letter.
bool UsuallyEndsSentence(std::string_view word);
// Of short forms that end one behind certain words alone ("1799 г.", "и т. д."), whether they do
// there; nothing for other words.
std::optional<bool> EndsBehind(std::string_view word, std::string_view previous);
// Of what stands behind a quotation in scripts without capital letters: whether it begins with a
// particle that belongs to what is quoted, and whether it says who spoke.
bool GoesOnWithParticle(std::string_view behind);
bool SaysWhatWasQuoted(std::string_view behind);
// Whether numbers with a stop are ordinal numbers: "am 3. Mai".
bool HasDottedOrdinals(std::string_view language);
// A word with which sentences begin, and names and titles do not: "How",
// "They".
bool BeginsSentences(std::string_view word);
// "J. Le Goff", "George F. Will"; in the languages whose words they are they begin sentences.
bool MayBeOfName(std::string_view word, std::string_view language);
bool IsTitle(std::string_view word);  // "Mr", with which a sentence may begin

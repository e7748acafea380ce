#include "speech/pronunciations.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <ctime>
#include <string>
#include <vector>

#include "speech/text_preparation.h"
#include "tests/support/scratch_folder.h"

namespace {

std::shared_ptr<const Pronunciations> ListOf(const std::string& file) {
    return std::make_shared<Pronunciations>(ParsePronunciations(file).entries);
}

std::string Said(const std::string& file, const std::string& text,
                 const std::string& voice = "espeak-ng:en", const std::string& language = "en-US") {
    return PrepareText(text, VoiceCharset::kUnicode, language,
                       SaidDifferently(ListOf(file), text, voice, language))
        .text;
}

double ProcessorSeconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

TEST(Pronunciations, SayWordsStretchesAndPatternsDifferently) {
    const struct {
        const char* what;
        std::string file;
        std::string text;
        std::string said;
    } cases[] = {
        {"a word, in any case, not within others", "Nguyen\twin", "Mr. NGUYEN's Nguyens, (nguyen).",
         "Mr. win's Nguyens, (win)."},
        {"case", "Polish\tpoh-lish\t\tcase", "polish Polish", "polish poh-lish"},
        {"an accent in either form, a capital beyond ASCII", "café\tkaffay\nЁж\tёшь",
         "CAFE\u0301 café ёж", "kaffay kaffay ёшь"},
        {"the longest stretch, over a line's end", "New York\tN Y\nNew York City\tN Y C",
         "As far as anybody has been told she lives for half of the year in New\nYork, or New  "
         "York City; New Jersey",
         "As far as anybody has been told she lives for half of the year in N Y, or N Y C; New "
         "Jersey"},
        {"not over an empty line", "New York\tN Y", "New\n\nYork", "New\n\nYork"},
        {"signs", "C++\tC plus plus\ne.g.\tfor example\n&\tand", "C++ & D, e.g. this",
         "C plus plus and D, for example this"},
        {"either apostrophe", "don't\tdo not", "Don’t, don't", "do not, do not"},
        {"scripts without blanks", "日本\tにっぽん", "私は日本人", "私はにっぽん人"},
        {"skipped, without a gap before the stop", "sic\t", "He said so sic. Yes (sic) no",
         "He said so. Yes () no"},
        {"a pattern", "\\[(\\d+)\\]\tnote \\1\t\tpattern", "Yes [12], no", "Yes note 12, no"},
        {"a pattern of a sentence", "^So\tThus\t\tpattern", "So it is. So what? And So on.",
         "Thus it is. Thus what? And So on."},
        {"a pattern that finds nothing at a place", "x*\ty\t\tpattern", "axxb", "ayb"},
        {"the first entry", "one\tfirst\none\tsecond", "One.", "first."},
        {"no entries", "# one\ttwo\n#\n\n\tthree\n", "One # three", "One # three"},
    };
    for (const auto& test : cases)
        EXPECT_EQ(Said(test.file, test.text), test.said) << test.what;
}

TEST(Pronunciations, OfAddressesTheSiteIsSaid) {
    const std::pair<const char*, const char*> cases[] = {
        {"See https://www.example.org/a/b.html?c=d#e, please.", "See example.org, please."},
        {"(http://ann:pw@example.org:8080/x_(y))", "(example.org)"},
        {"<HTTP://EXAMPLE.ORG> or www.example.org/x!", "<EXAMPLE.ORG> or example.org!"},
        {"http:// www. www.x https:///", "http:// www. www.x https:///"},
        {"ahttp://example.org/b", "ahttp://example.org/b"},
        {"the http://listed.org/x", "the list"},
    };
    for (const auto& [text, said] : cases) {
        SaidDifferently differently(ListOf("http://listed.org/x\tlist"), text, "espeak-ng:en",
                                    "en");
        differently.SayHosts();
        EXPECT_EQ(PrepareText(text, VoiceCharset::kUnicode, "en", std::move(differently)).text,
                  said);
    }
}

TEST(Pronunciations, HoldForAllForALanguageOrForAVoice) {
    const std::string file =
        "tomato\tall\ntomato\tenglish\ten\ntomato\tbritish\ten-GB\ntomato\tkal\tfestival:kal";
    EXPECT_EQ(Said(file, "tomato", "espeak-ng:fi", "fi"), "all");
    EXPECT_EQ(Said(file, "tomato", "espeak-ng:en-us", "en-US"), "english");
    EXPECT_EQ(Said(file, "tomato", "espeak-ng:en-gb", "en-GB"), "british");
    EXPECT_EQ(Said(file, "tomato", "festival:kal", "en-GB"), "kal");
    EXPECT_EQ(Said("a.c\tx\tde\tpattern", "abc", "espeak-ng:en", "en"), "abc");
}

TEST(Pronunciations, KeepThePlacesOfTheText) {
    const std::string text = "Dr. Nguyen left (sic). New York is far.";
    TextUnits units(text, VoiceCharset::kUnicode, "en",
                    SaidDifferently(ListOf("Nguyen\twin or so\nNew York\tN Y\nsic\t"), text,
                                    "espeak-ng:en", "en"));
    TextUnit unit;
    ASSERT_TRUE(units.Next(unit));
    EXPECT_EQ(unit.text, "Dr. win or so left (). ");
    EXPECT_EQ(text.substr(unit.sourceBegin, unit.sourceEnd - unit.sourceBegin),
              "Dr. Nguyen left (sic).");
    ASSERT_TRUE(units.Next(unit));
    EXPECT_EQ(unit.text, "N Y is far.");
    EXPECT_EQ(text.substr(unit.sourceBegin, unit.sourceEnd - unit.sourceBegin), "New York is far.");
}

TEST(Pronunciations, AreBoundedInTime) {
    // Backtracks for ever, and is not asked again.
    const std::string text = std::string(3000, 'a') + "! One two. " + std::string(3000, 'a') + "!";
    SaidDifferently said(ListOf("(a+)+[bc]\tx\t\tpattern\ntwo\tzwei"), text, "", "");
    const double before = ProcessorSeconds();
    std::string spoken;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (const auto stretch = said.At(at))
            spoken += stretch->said;
    EXPECT_LT(ProcessorSeconds() - before, 1.0);
    EXPECT_EQ(spoken, "zwei");
    EXPECT_EQ(said.GivenUp(), std::vector<std::string>{"(a+)+[bc]"});

    // A long list of stretches that begin alike, in sentences of 100 bytes.
    std::string file;
    for (int i = 0; i < 100'000; ++i)
        file += "the big word" + std::to_string(i) + "\tx\n";
    for (std::size_t i = 0; i < kMostPatterns; ++i)
        file += "\\bq[a-z]*" + std::to_string(i) + "x\ty\t\tpattern\n";
    const auto list = ListOf(file);
    constexpr int kSentences = 200;
    std::string book;
    for (int i = 0; i < kSentences; ++i)
        book +=
            "The big word and the big word9999999 of the quick brown fox are in this sentence, "
            "and others.\n";
    const double begin = ProcessorSeconds();
    EXPECT_TRUE(PrepareText(book, VoiceCharset::kUnicode, "en",
                            SaidDifferently(list, book, "espeak-ng:en", "en"))
                    .hasWords);
    // Meant is a thousandth of a second; sanitizers and busy machines take their share.
    EXPECT_LT((ProcessorSeconds() - begin) / kSentences, 0.01);
    RecordProperty("microseconds_a_sentence",
                   static_cast<int>(1e6 * (ProcessorSeconds() - begin) / kSentences));
}

TEST(Pronunciations, SurviveTheirFileAndOtherProgramsFiles) {
    const std::vector<Pronunciation> entries = {{"Nguyen", "win", "", false, false},
                                                {"sic", "", "", false, false},
                                                {"#1", "number one", "de", false, true},
                                                {"a(b)", "\\1", "festival:kal", true, true}};
    std::size_t leftOut = 9;
    const std::string written = FormatPronunciationList({entries});
    EXPECT_EQ(ParsePronunciations(written).entries, entries);
    EXPECT_EQ(FormatPronunciationList(ParsePronunciations(written)), written);
    // What people wrote beside it, and in other charsets, stays where it is.
    const std::string by = "# family\n \t\nM\xFCller\tmew-ler\n";
    PronunciationList list = ParsePronunciations(by + "one\ntwo\r\n" + std::string(500, 'x'));
    ASSERT_EQ(list.entries.size(), 2U);
    EXPECT_EQ(list.leftOut, 2U);
    RemovePronunciation(list, 0);
    list.entries.insert(list.entries.begin(), {"new", "knew", "", false, false});
    EXPECT_THAT(FormatPronunciationList(list),
                testing::EndsWith("\nnew\tknew\n" + by + "two\t\n" + std::string(500, 'x') + "\n"));
    for (const Pronunciation& bad : {Pronunciation{" ", "x", "", false, false},
                                     {"(", "x", "", true, false},
                                     {"a", "\\g<", "", true, false},
                                     {"a\tb", "x", "", false, false},
                                     {"# a", "x", "", false, false}})
        EXPECT_NE(ProblemOf(bad), "") << bad.text;

    const std::vector<Pronunciation> both = {{"St.", "saint", "", false, false},
                                             {"a, b", "say \"it\"", "", false, false}};
    for (const char* file : {"\xEF\xBB\xBFSt.=saint\r\na, b = say \"it\"\r\n; only a remark\r\n",
                             "St.\tsaint\na, b\tsay \"it\"\nnothing here",
                             "\"St.\",saint\n\"a, b\",\"say \"\"it\"\"\"\nalone\n"}) {
        EXPECT_EQ(ImportPronunciations(file, leftOut), both) << file;
        EXPECT_EQ(leftOut, 1U);
    }
}

TEST(Pronunciations, AreReadFromTheUserAndTheMachine) {
    const ScratchFolder folder;
    const ScopedVariable home("HOME", (folder / "home").c_str());
    const ScopedVariable root("LECTORA_ROOT", (folder / "root").c_str());
    std::filesystem::create_directories(folder / "home");
    std::filesystem::create_directories(folder / "root/etc/lectora");
    const auto say = [](const std::string& text) {
        return PrepareText(text, VoiceCharset::kUnicode, "en",
                           SaidDifferently(CurrentPronunciations(), text, "", "en"))
            .text;
    };
    EXPECT_EQ(say("cat dog"), "cat dog");
    const std::string machines = folder / "root/etc/lectora/pronunciations.txt";
    std::ofstream(machines) << "cat\tschool's\ndog\tschool's\n";
    EXPECT_EQ(say("cat dog"), "school's school's");
    ASSERT_EQ(StoreOwnPronunciations({{{"cat", "mine", "", false, false}}}), 0);
    EXPECT_EQ(say("cat dog"), "mine school's");
    ::chmod(machines.c_str(), 0666);
    EXPECT_EQ(say("cat dog"), "mine school's") << "nothing has changed but who may write";
    std::ofstream(machines) << "dog\tplanted\n";
    EXPECT_EQ(say("cat dog"), "mine dog");
    // A list that cannot be read is not taken for an empty one, which would be written over it.
    const std::string own = OwnPronunciationsPath();
    std::filesystem::rename(own, folder / "moved");
    EXPECT_EQ(LoadOwnPronunciations().error, 0);
    std::filesystem::create_symlink(folder / "moved", own);
    const PronunciationList unread = LoadOwnPronunciations();
    EXPECT_NE(unread.error, 0);
    EXPECT_EQ(StoreOwnPronunciations(unread), unread.error);
    EXPECT_TRUE(std::filesystem::is_symlink(own));
    PronunciationList large;
    large.below.assign(33 << 20, '#');
    EXPECT_EQ(StoreOwnPronunciations(large), EFBIG);
}

}  // namespace

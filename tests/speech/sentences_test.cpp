#include "speech/sentences.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

std::string Marked(const std::string& text, const std::string& language) {
    std::string marked;
    std::size_t at = 0;
    for (const Sentence& sentence : SentencesOf(text, language)) {
        marked += text.substr(at, sentence.begin - at) + (sentence.begin == 0 ? "" : "|");
        marked += text.substr(sentence.begin, sentence.end - sentence.begin);
        at = sentence.end;
    }
    return marked + text.substr(at);
}

struct MarkedText {
    std::string language;
    std::string marked;
    bool isKnownWrong;
};

std::vector<MarkedText> MarkedTexts() {
    std::vector<MarkedText> cases;
    std::ifstream file(LECTORA_SENTENCES);
    std::string language;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("== ")) {
            language = line.substr(3);
        } else if (!line.empty() && line[0] != '#') {
            const bool isKnownWrong = line[0] == '?';
            std::string marked = line.substr(isKnownWrong ? 1 : 0);
            for (std::size_t at = marked.find("\\n"); at != std::string::npos;
                 at = marked.find("\\n"))
                marked.replace(at, 2, "\n");
            cases.push_back({language, marked, isKnownWrong});
        }
    }
    return cases;
}

// Whether their language is told or has to be seen.
TEST(Sentences, AreThoseOfTheLanguageAndOfListsQuotationsAndHeadings) {
    const std::vector<MarkedText> cases = MarkedTexts();
    ASSERT_GT(cases.size(), 600U);
    for (const auto& [language, marked, isKnownWrong] : cases) {
        std::string text = marked;
        std::erase(text, '|');
        for (const std::string& told : {language, std::string()})
            EXPECT_EQ(Marked(text, told) == marked, !isKnownWrong)
                << language << (told.empty() ? " guessed: " : " told: ") << Marked(text, told);
    }
}

TEST(Sentences, OfEachParagraphAreThoseOfItsLanguage) {
    const std::string paragraphs[] = {
        "The meeting on the first floor was long, and nobody knew when it would be over. They all "
        "stayed.",
        "Das Fest beginnt am 3. Oktober in der Stadt und endet erst am 9. November, wenn alle nach "
        "Hause gehen.",
        "Yes, No. 7 it is.",  // shows nothing: as at the beginning
        "Она приехала в 1995 г. Москва ей не понравилась, а потом она уехала к своей сестре."};
    std::string text;
    std::string seen;
    for (const std::string& paragraph : paragraphs)
        text += paragraph + "\n\n";
    for (const Sentence& sentence : SentencesOf(text))
        seen += text.substr(sentence.begin, sentence.end - sentence.begin).substr(0, 15) + "|";
    EXPECT_EQ(seen,
              "The meeting on |They all stayed|Das Fest beginn|Yes, No. 7 it i|Она прие|Москва е|");
}

// However a text is cut into what is looked at together, each word is in one sentence.
TEST(Sentences, HoldEveryWordOnceInTextsOfAnyKind) {
    const char* const parts[] = {"word ",        "Word. ",        "\n",   "\n\n",  "\xc3\xa9",
                                 "\xe3\x80\x82", "\xff",          "\"",   "(",     ") ",
                                 "1. ",          "\xe2\x80\xa2 ", "... ", "U.S. ", ": ",
                                 "\xe2\x80\xa9", "\xc2\xbb"};
    unsigned int random = 1;
    for (int round = 0; round < 200; ++round) {
        std::string text(round % 7 == 0 ? 9000 : 0, 'x');
        for (int i = 0; i < 2000; ++i) {
            random = random * 1103515245 + 12345;
            text += parts[random / 65536 % std::size(parts)];
        }
        std::size_t at = 0;
        Sentences sentences(text);
        for (Sentence sentence{}; sentences.Next(sentence); at = sentence.end) {
            ASSERT_LE(at, sentence.begin);
            ASSERT_LT(sentence.begin, sentence.end);
            ASSERT_LE(sentence.end - sentence.begin, 4096U);
            const std::string_view gap = std::string_view(text).substr(at, sentence.begin - at);
            ASSERT_EQ(gap.find_first_not_of(" \t\n"), std::string_view::npos);
        }
        ASSERT_EQ(text.find_first_not_of(" \t\n", at), std::string::npos);
    }
}

}  // namespace

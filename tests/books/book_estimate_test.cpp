// What is told of a book's length while it is being spoken.
#include "books/book_estimate.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "documents/document.h"

namespace {

constexpr int kRate = 16000;

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (int i = 0; i < times; ++i)
        all += text;
    return all;
}

struct Half {
    std::string text;
    double frames;  // that a voice takes for it
};

TEST(BookEstimate, NoScriptThatIsStillToComeMakesABookLookLongerThanItBecomes) {
    // 2,000 letters of each; an ideograph takes as long as five letters.
    const Half english{Repeated("Boats lay at the pier. ", 100), 2300e3};
    const Half russian{Repeated("Лодки были у причала.  ", 100), 2300e3};
    const Half chinese{Repeated("船在碼頭", 100), 1900e3};
    const Half hurried{english.text, 1150e3};  // by a voice that is heard at twice the speed
    struct Case {
        const char* name;
        Half first;
        Half second;
        std::vector<int> speeds = {};
    };
    for (const Case& test :
         {Case{"English, Russian", english, russian}, Case{"Russian, English", russian, english},
          Case{"Chinese, English", chinese, english}, Case{"English, Chinese", english, chinese},
          Case{"two speeds", english, hurried, {100, 200}}}) {
        SCOPED_TRACE(test.name);
        constexpr int kShortChapters = 50;  // whose silence is most of them
        Document document;
        document.text = Repeated("A\n", kShortChapters) + test.first.text + "\n" + test.second.text;
        for (std::size_t i = 0; i < kShortChapters; ++i)
            document.chapters.push_back({2 * i, "A"});
        const std::size_t words = 2 * kShortChapters;
        const std::size_t half = words + test.first.text.size() + 1;
        document.chapters.push_back({words, "First"});
        document.chapters.push_back({half, "Second"});
        BookOrder order;
        order.plan = PlanBook(document, "book");
        order.text = document.text;
        order.rules.byLanguage = true;
        order.rules.speeds = test.speeds;
        order.secondsBetween = 5;
        const double silence = 5 * kRate;
        const double before = kShortChapters * (silence + 1000);
        const double whole = before + test.first.frames + test.second.frames + 2 * silence;
        EXPECT_EQ(LeastFrames(order, words, before, kRate), before) << "too early to tell";
        const double least = LeastFrames(order, half, before + test.first.frames + silence, kRate);
        EXPECT_LE(least, whole);
        EXPECT_GT(least, whole * (test.speeds.empty() ? 0.9 : 0.85)) << "told late";
        EXPECT_NEAR(LeastFrames(order, order.text.size(), whole, kRate), whole, 1);
    }
}

}  // namespace

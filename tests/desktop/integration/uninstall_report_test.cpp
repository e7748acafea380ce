#include "desktop/uninstall_report.h"

#include <gtest/gtest.h>

namespace {

const std::string kPageStart = "software=Lectora&version=1.05&report=UNINSTALL&text=";

TEST(UninstallReport, FollowsTheRowBehindTheReasonThatIsShown) {
    const std::string longText(3000, 'x');
    const struct {
        const char* choice;
        int item;
        std::string typed;
        std::string text;  // empty: nothing is sent
    } cases[] = {
        {"none chosen, the row looked at has advice", 0, "typed", "-"},
        {"I don't use it very often", 1, "slow app", "slow app-slow%20app"},
        {"I don't use it very often", 1, "", "-"},
        {"I have problems using it", 2, "typed", "-"},
        {"It doesn't have features that I want", 3, "a&b=\xc3\xa9/~\x7f",
         "a&b=\xc3\xa9/~\x7f-a%26b%3D%C3%A9%2F~\x7f"},
        {"I prefer another product", 4, "", ""},
        {"I prefer another product", 4, "%:/?#[]@!$&'()*+,;=",
         "%:/?#[]@!$&'()*+,;=-%25%3A%2F%3F%23%5B%5D%40%21%24%26%27%28%29%2A%2B%2C%3B%3D"},
        {"Other", 5, "typed", ""},
        {"beyond", 6, "typed", ""},
        {"no item", -1, "typed", ""},
        {"the whole is cut", 1, longText, longText.substr(0, 2047 - kPageStart.size())},
        {"the code is cut", 1, std::string(100, ' '),
         std::string(100, ' ') + "-" +
             [] {
                 std::string codes;
                 while (codes.size() < 259)
                     codes += "%20";
                 return codes.substr(0, 259);
             }()},
    };
    for (const auto& each : cases)
        EXPECT_EQ(UninstallReportBody(each.item, each.typed),
                  each.text.empty() ? "" : kPageStart + each.text)
            << each.choice;
}

}  // namespace

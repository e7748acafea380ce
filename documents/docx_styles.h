// What DOCX keeps beside the text: which styles are headings, and how lists are numbered.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

class DocxStyles {
public:
    // From "word/styles.xml" and "word/numbering.xml"; both may be empty.
    DocxStyles(std::string_view styles, std::string_view numbering);

    // 1 to 6; 0 for one that is no heading.
    int HeadingLevel(std::string_view style) const;
    const std::string& Language() const { return language_; }

    // The list that a paragraph's style puts it in.
    struct ListPlace {
        std::string list;  // empty: none
        int level = 0;
    };
    ListPlace ListOf(std::string_view style) const;
    // The number of the next paragraph there, "2.1."; empty for a bullet.
    std::string NextNumber(const ListPlace& place);

private:
    struct Level {
        std::string format = "bullet";
        std::string text;  // "%1.%2"
        int start = 1;
    };
    struct Style {
        int heading = 0;
        ListPlace list;
        std::string base;
    };
    class StylesListener;
    class NumberingListener;

    std::map<std::string, Style, std::less<>> styles_;
    std::map<std::string, std::string, std::less<>> lists_;  // to what describes them
    std::map<std::string, std::vector<Level>, std::less<>> descriptions_;
    std::map<std::string, std::map<std::size_t, int>, std::less<>> starts_;  // of lists, by level
    std::map<std::string, std::vector<int>, std::less<>> counts_;            // of descriptions
    std::string language_;
};

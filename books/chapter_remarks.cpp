#include "books/chapter_remarks.h"

#include <sstream>

#include "books/book_order.h"
#include "speech/speech_pieces.h"

SpeakingRules RulesFrom(const BookOrder& order, std::size_t begin) {
    SpeakingRules rules = order.rules;
    rules.marks = MarksFrom(rules.marks, begin);
    for (const DocumentHeading& heading : order.plan.headings)
        if (heading.begin >= begin)
            rules.headings.push_back(heading.begin - begin);
    return rules;
}

void ChapterRemarks::Add(const ChapterRemarks& section) {
    isSilent = isSilent && section.isSilent;
    isAnything = isAnything || section.isAnything;
    leftOut.insert(leftOut.end(), section.leftOut.begin(), section.leftOut.end());
    if (voices.empty())
        voices = section.voices;
}

std::string StoreRemarks(const ChapterRemarks& remarks) {
    std::ostringstream stored;
    stored << remarks.isSilent << ' ' << remarks.isAnything << ' ' << remarks.leftOut.size();
    for (const LeftOutUnit& unit : remarks.leftOut)
        stored << ' ' << unit.sourceBegin << ' ' << unit.sourceEnd;
    stored << '\n' << remarks.voices;
    return stored.str();
}

ChapterRemarks LoadRemarks(const std::string& stored, const BookChapter& chapter) {
    std::istringstream in(stored);
    ChapterRemarks remarks;
    remarks.isSilent = false;
    std::size_t count = 0;
    in >> remarks.isSilent >> remarks.isAnything >> count;
    LeftOutUnit unit{};
    for (; count > 0 && in >> unit.sourceBegin >> unit.sourceEnd; --count)
        if (unit.sourceBegin <= unit.sourceEnd && unit.sourceEnd <= chapter.end - chapter.begin)
            remarks.leftOut.push_back(unit);
    in.ignore();
    std::getline(in, remarks.voices, '\0');
    return remarks;
}

std::string TextOf(const ChapterRemarks& remarks, const BookOrder& order,
                   const BookChapter& chapter) {
    if (remarks.isSilent)
        return "It holds nothing that can be said, and is silent.";
    if (!remarks.isAnything)
        return "";
    const std::string_view text =
        std::string_view(order.text).substr(chapter.begin, chapter.end - chapter.begin);
    // What the voices cannot say is counted once more, in all of it.
    SpeechPieces pieces(text, order.voice, ReadingUse::kSaving, RulesFrom(order, chapter.begin));
    for (SpeechPiece piece; pieces.Next(piece);) {
    }
    std::string told = remarks.voices;
    for (const std::string& sentence : {LeftOutMessage(text, remarks.leftOut), pieces.Message()})
        told += (told.empty() || sentence.empty() ? "" : " ") + sentence;
    return told;
}

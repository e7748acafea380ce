#include "tools/say_book_options.h"

#include <cstring>

#include "sound/tempo.h"
#include "tools/tool_texts.h"

const char kBookHelp[] =
    "      --audiobook[=chapters]  a book with its chapters, tags and cover (mp3, opus, m4b, "
    "flac,\n"
    "                       wav), or a file for each chapter in the folder OUTPUT; goes on\n"
    "                       where it was broken off\n"
    "      --bitrate=KBIT   of an audiobook, a second\n"
    "      --speed=PERCENT  of an audiobook, of the voice's own: 50 to 600, or listened:\n"
    "                       as each voice is listened to in Lectora\n"
    "      --silence=SECONDS  behind each chapter: 0 to 60, 1 without this option\n"
    "      --own-level      as loud as the voice is, not each chapter as loud as the others\n"
    "      --title=TITLE, --author=AUTHOR, --cover=PICTURE\n"
    "                       in place of the document's; an empty one leaves it out\n"
    "      --subtitles=FORM beside an audiobook its sentences: srt, vtt or lrc\n"
    "      --as-begun       go on with an unfinished audiobook in the voice and manner that it "
    "was\n"
    "                       begun with, where they are others now; else it is begun anew\n"
    "      --plan           print an audiobook's chapters, length and size, and make none\n";

namespace {

bool TakeSpeed(const char* value, BookWish& wish) {
    int percent = 0;
    wish.speed.reset();
    if (std::strcmp(value, "listened") == 0)
        return true;
    if (!ParseNumber(value, LTempo::kSlowestPercent, LTempo::kFastestPercent, percent))
        return false;
    wish.speed = percent;
    return true;
}

}  // namespace

bool TakeBookOption(int option, const char* value, BookWish& wish) {
    switch (option) {
        case kAudiobook:
            wish.isWanted = true;
            wish.inChapters = value != nullptr && std::strcmp(value, "chapters") == 0;
            return value == nullptr || wish.inChapters;
        case kBitRate:
            return ParseNumber(value, 8, 320, wish.kilobits);
        case kSubtitles:
            wish.subtitles = SubtitleFormFromName(value);
            return wish.subtitles.has_value();
        case kSpeed:
            return TakeSpeed(value, wish);
        case kSilence:
            return ParseNumber(value, 0, 60, wish.secondsBetween);
        case kOwnLevel:
            wish.evensLoudness = false;
            return true;
        case kTitle:
            wish.title = value;
            return *value != '\0';
        case kAuthor:
            wish.author = value;
            return true;
        case kCover:
            wish.cover = value;
            return true;
        case kAsBegun:
            return wish.asBegun = true;
        default:
            return wish.isOnlyPlanned = true;
    }
}

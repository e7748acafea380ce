#include "app/books/book_choices.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "app/settings_keys.h"
#include "playback/settings_keys.h"

namespace {

constexpr char kSection[] = "Audiobooks";
constexpr UserSetting<const char*> kTypeSetting{kSection, "Format", "mp3"};
constexpr UserSetting<int> kQualitySetting{kSection, "Quality", 1};
constexpr UserSetting<bool> kInChaptersSetting{kSection, "InChapters", false};
constexpr UserSetting<bool> kAsListenedToSetting{kSection, "AsListenedTo", true};
constexpr UserSetting<bool> kEvensLoudnessSetting{kSection, "EvensLoudness", true};
constexpr UserSetting<int> kSecondsBetweenSetting{kSection, "SecondsBetween", 1};
constexpr UserSetting<const char*> kSubtitlesSetting{kSection, "Subtitles", ""};
constexpr UserSetting<const char*> kFolderSetting{kSection, "Folder", ""};

std::string FolderByDefault() {
    const std::string saved = kSaveFolderSetting.Get();
    const char* const home = std::getenv("HOME");
    return !saved.empty() ? saved : home != nullptr ? home : "/";
}

}  // namespace

BookChoices LoadBookChoices() {
    BookChoices choices;
    const std::optional<SoundType> type = SoundTypeFromName(kTypeSetting.Get());
    if (type && std::ranges::find(kBookTypes, *type) != std::end(kBookTypes))
        choices.type = *type;
    choices.isReadAlong = kTypeSetting.Get() == kReadAlongEnding;
    choices.quality = static_cast<BookQuality>(std::clamp(kQualitySetting.Get(), 0, 2));
    choices.inChapters = kInChaptersSetting.Get();
    choices.asListenedTo = kAsListenedToSetting.Get();
    choices.evensLoudness = kEvensLoudnessSetting.Get();
    choices.byLanguage = kVoiceByLanguageSetting.Get();
    choices.secondsBetween = std::clamp(kSecondsBetweenSetting.Get(), 0, kMostSecondsBetween);
    choices.subtitles = SubtitleFormFromName(kSubtitlesSetting.Get());
    choices.folder = kFolderSetting.Get();
    if (choices.folder.empty())
        choices.folder = FolderByDefault();
    return choices;
}

void StoreBookChoices(const BookChoices& choices) {
    kTypeSetting.Set(EndingOf(choices));
    kQualitySetting.Set(static_cast<int>(choices.quality));
    kInChaptersSetting.Set(choices.inChapters);
    kAsListenedToSetting.Set(choices.asListenedTo);
    kEvensLoudnessSetting.Set(choices.evensLoudness);
    kSecondsBetweenSetting.Set(choices.secondsBetween);
    kSubtitlesSetting.Set(choices.subtitles ? EndingOf(*choices.subtitles) : "");
    KeepFolder(kFolderSetting, choices.folder);
}

int KilobitsOf(SoundType type, BookQuality quality) {
    struct Row {
        SoundType type;
        int small;
        int high;
    };
    static constexpr Row kRows[] = {
        {SoundType::kMp3, 32, 96}, {SoundType::kM4b, 32, 96}, {SoundType::kOpus, 16, 48}};
    for (const Row& row : kRows)
        if (row.type == type)
            return quality == BookQuality::kSmall  ? row.small
                   : quality == BookQuality::kHigh ? row.high
                                                   : 0;
    return 0;
}

const char* TitleOf(SoundType type) {
    switch (type) {
        case SoundType::kM4b:
            return "M4B (audiobook players)";
        case SoundType::kOpus:
            return "Opus (smallest)";
        case SoundType::kFlac:
            return "FLAC (loses nothing)";
        case SoundType::kWav:
            return "WAV (no chapters)";
        default:
            return "MP3 (every player)";
    }
}

const char* TitleOf(SubtitleForm form) {
    switch (form) {
        case SubtitleForm::kSrt:
            return "SRT subtitles";
        case SubtitleForm::kVtt:
            return "WebVTT subtitles";
        default:
            return "LRC lyrics";
    }
}

std::string QualityText(SoundType type, BookQuality quality) {
    if (!HasQuality(type))
        return "All of it";
    switch (quality) {
        case BookQuality::kSmall:
            return "Small (" + std::to_string(KilobitsOf(type, quality)) + " kbit/s)";
        case BookQuality::kHigh:
            return "High (" + std::to_string(KilobitsOf(type, quality)) + " kbit/s)";
        default:
            return "What serves speech";
    }
}

BookOrder OrderOf(const BookChoices& choices, int voice) {
    BookOrder order;
    order.voice = voice;
    order.rules = ChosenSpeakingRules();
    order.rules.byLanguage = choices.byLanguage;
    order.rules.manners = MannersOfVoices();
    order.type = choices.type;
    order.kilobits = KilobitsOf(choices.type, choices.quality);
    order.evensLoudness = choices.evensLoudness;
    order.secondsBetween = choices.secondsBetween;
    order.subtitles = choices.subtitles;
    order.isReadAlong = choices.isReadAlong;
    if (choices.asListenedTo)
        for (const Voice& each : KnownVoices())
            order.rules.speeds.push_back(PlayerTempo(SettingsKeyOf(each).c_str()).Get());
    return order;
}

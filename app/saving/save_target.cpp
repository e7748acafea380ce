#include "app/saving/save_target.h"

#include <sys/stat.h>

#include <algorithm>
#include <vector>

#include "app/settings_keys.h"
#include "formats/dialogs/aiff_settings_dialog.h"
#include "formats/dialogs/au_settings_dialog.h"
#include "formats/dialogs/raw_settings_dialog.h"
#include "formats/settings_keys.h"
#include "formats/wave_file.h"
#include "foundation/files/file.h"

namespace {

bool AsksFormat() {
    return kSaveByDefaultSetting.Get() == "0";
}

SoundType TypeByDefault() {
    return !AsksFormat() && kSaveFormatSetting.Get() == "0" ? SoundType::kMp3 : SoundType::kWav;
}

// The options keep the settings of WAV and MP3 files; those of the others are asked for each time.
bool AsksSettings(SoundType type) {
    return AsksFormat() || (type != SoundType::kWav && type != SoundType::kMp3);
}

// False: cancelled. What is chosen is kept, and so preset the next time.
bool AskSettings(GtkWidget* parent, SoundType type) {
    if (type == SoundType::kAu)
        return LAuSettingsDlg().Run(parent);
    if (type == SoundType::kAiff)
        return LAIFFSettingsDlg().Run(parent);
    if (type != SoundType::kRaw)
        return true;
    LRawSettings settings{RawRateSetting(kRawSavingSection).Get(),
                          static_cast<std::uint8_t>(RawChannelsSetting(kRawSavingSection).Get()),
                          RawCodecSetting(kRawSavingSection).Get()};
    return LRawSettingsDialog(settings, kRawSavingSection).Run(parent);
}

}  // namespace

std::optional<SaveTarget> ChooseSaveTarget(GtkWidget* parent, const std::string& suggestedName) {
    const std::vector<SoundType> types = WritableSoundTypes();
    std::string filters;
    for (const SoundType type : types)
        filters += ChooserFilter(type);
    auto filter = static_cast<int>(std::ranges::find(types, TypeByDefault()) - types.begin());
    std::string path = suggestedName;
    std::string folder = kSaveFolderSetting.Get();
    if (!LFile::BrowseSaveFilePath(parent, path, "Save File as", folder, filters.c_str(), filter))
        return std::nullopt;
    KeepFolder(kSaveFolderSetting, folder);
    // Some types are only read, or only audiobooks: their endings say no more than unknown ones do.
    const std::optional<SoundType> named = SoundTypeOfPath(path);
    const bool isOffered = named && std::ranges::find(types, *named) != types.end();
    const SoundType type = isOffered ? *named : types[static_cast<std::size_t>(filter)];
    struct stat status = {};
    return SaveTarget{path, type, AsksSettings(type), ::stat(path.c_str(), &status) == 0};
}

std::optional<LSoundSink> OpenTargetSink(GtkWidget* parent, const SaveTarget& target,
                                         const std::string& writePath, const LRawSettings& asked) {
    if (!target.asksSettings || target.type != SoundType::kWav) {
        if (target.asksSettings && !AskSettings(parent, target.type))
            return std::nullopt;
        return RowOf(target.type).openSinkAsSet(writePath.c_str(), asked);
    }
    LWaveFileFormat format(44100, 1, "PCM");
    if (!LWaveFile::WaveFormatSelectDialog(format, 0, "Select Wave File Format"))
        return std::nullopt;
    return LWaveFile::OpenSink(writePath.c_str(), format);
}

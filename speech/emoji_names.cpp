#include "speech/emoji_names.h"

#include <glib.h>

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>
#include <vector>

#include "foundation/files/file_io.h"
#include "foundation/files/machine_root.h"
#include "foundation/log/log.h"

namespace {

constexpr std::size_t kLargestNames = 4 << 20;
constexpr std::size_t kMostParts = 12;  // characters of one picture

// Lines "picture<Tab>name", in the order of their bytes.
class NameList {
public:
    explicit NameList(std::string lines) : text_(std::move(lines)) {
        for (std::string_view rest = text_; !rest.empty();) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            if (const std::size_t tab = line.find('\t'); tab != line.npos && tab > 0)
                names_.emplace_back(line.substr(0, tab), line.substr(tab + 1));
        }
        std::ranges::sort(names_);
    }
    NameList(const NameList&) = delete;
    NameList& operator=(const NameList&) = delete;

    std::string_view Find(std::string_view picture) const {
        const auto found = std::ranges::lower_bound(names_, picture, {}, &Entry::first);
        return found == names_.end() || found->first != picture ? "" : found->second;
    }

private:
    using Entry = std::pair<std::string_view, std::string_view>;

    const std::string text_;
    std::vector<Entry> names_;
};

std::string ReadNames(const std::string& path) {
    std::string lines;
    const UniqueFd file = OpenFileForReading(path.c_str());
    if (file.IsOpen() &&
        (!ReadWholeFile(file.Get(), kLargestNames, lines) ||
         g_utf8_validate(lines.data(), static_cast<gssize>(lines.size()), nullptr) == FALSE)) {
        LOGWARNF("Speech: %s is damaged: pictures have no names", path.c_str());
        lines.clear();
    }
    return lines;
}

// Read once; a language without names has an empty list.
const NameList& NamesIn(std::string_view language) {
    static std::mutex mutex;
    static auto& lists = *new std::map<std::string, NameList>;
    const bool isTag =
        std::ranges::all_of(language, [](char letter) { return g_ascii_islower(letter) != FALSE; });
    const std::string path =
        MachinePath("/opt/quillon/lectora/share/emoji/" +
                    std::string(isTag ? language : std::string_view()) + ".txt");
    const std::lock_guard lock(mutex);
    auto found = lists.find(path);
    if (found == lists.end())
        found = lists.try_emplace(path, ReadNames(path)).first;
    return found->second;
}

// The colour of a skin, and how the letter before is drawn.
bool ChangesLook(gunichar character) {
    return character == 0xFE0E || character == 0xFE0F ||
           (character >= 0x1F3FB && character <= 0x1F3FF);
}

}  // namespace

std::optional<EmojiName> FindEmojiName(std::string_view language, std::string_view text) {
    const NameList& names = NamesIn(language);
    std::optional<EmojiName> found;
    std::string picture;
    std::size_t parts = 0;
    for (std::size_t at = 0; at < text.size() && parts < kMostParts; ++parts) {
        const gunichar character =
            g_utf8_get_char_validated(text.data() + at, static_cast<gssize>(text.size() - at));
        if (character >= 0x110000 || g_unichar_isspace(character) != FALSE)
            break;
        char bytes[6];
        const int size = g_unichar_to_utf8(character, bytes);
        at += static_cast<std::size_t>(size);
        const bool isWhole = found && found->size + static_cast<std::size_t>(size) == at;
        if (ChangesLook(character)) {
            if (isWhole)
                found->size = at;
            continue;
        }
        picture.append(bytes, static_cast<std::size_t>(size));
        if (const std::string_view name = names.Find(picture); !name.empty())
            found = {at, std::string(name)};
    }
    return found;
}

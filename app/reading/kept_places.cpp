#include "app/reading/kept_places.h"

#include <glib.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "app/reading/kept_fields.h"
#include "foundation/files/private_file.h"
#include "foundation/owned_text.h"
#include "foundation/whole_characters.h"

namespace {

constexpr const char* kPlacesFile = "reading-places";
constexpr int kFields = 5;
// Of a long text its beginning, its end and its length tell enough.
constexpr std::size_t kMostDigested = 1 << 22;

std::string Sha256(std::string_view bytes) {
    const OwnedText digest(g_compute_checksum_for_data(
        G_CHECKSUM_SHA256, reinterpret_cast<const guchar*>(bytes.data()), bytes.size()));
    return digest.get();
}

}  // namespace

int KeptPlace::Percent() const {
    return size == 0
               ? 0
               : static_cast<int>(static_cast<double>(place) * 100 / static_cast<double>(size));
}

std::string KeyOfFile(const std::string& path) {
    if (path.find("://") != std::string::npos)
        return Sha256("page " + path);
    const OwnedText absolute(g_canonicalize_filename(path.c_str(), nullptr));
    return Sha256(std::string("file ") + absolute.get());
}

std::string KeyOfText(std::string_view text) {
    std::string digested = "text " + std::to_string(text.size()) + " ";
    digested += text.substr(0, kMostDigested);
    if (text.size() > kMostDigested)
        digested += text.substr(text.size() - kMostDigested / 4);
    return Sha256(digested);
}

std::optional<std::size_t> FindPlace(const KeptPlace& kept, std::string_view text) {
    return FindPlace(kept, text, KeyOfText(text));
}

std::optional<std::size_t> FindPlace(const KeptPlace& kept, std::string_view text,
                                     const std::string& key) {
    if (kept.digest == key)
        return std::min(kept.place, text.size());
    if (kept.sentence.empty())
        return std::nullopt;
    const std::size_t behind = text.find(kept.sentence, std::min(kept.place, text.size()));
    const std::size_t before = text.rfind(kept.sentence, kept.place);
    constexpr std::size_t kNone = std::string_view::npos;
    if (behind == kNone && before == kNone)
        return std::nullopt;
    if (before == kNone || (behind != kNone && behind - kept.place < kept.place - before))
        return behind;
    return before;
}

KeptPlaces::KeptPlaces() {
    std::vector<std::string> fields = ReadKeptFields(kPlacesFile);
    for (std::size_t at = 0; at + kFields <= fields.size() && places_.size() < kMost; at += kFields)
        places_.push_back({std::move(fields[at]), std::move(fields[at + 1]),
                           NumberOfField(fields[at + 2]), NumberOfField(fields[at + 3]),
                           std::move(fields[at + 4])});
    isThere_ = !places_.empty();
}

bool KeptPlaces::IsForgotten() const {
    return isThere_ && ::access(PrivateFilePath(kPlacesFile).c_str(), F_OK) != 0;
}

std::optional<KeptPlace> KeptPlaces::Find(const std::string& key) const {
    const auto found = std::ranges::find(places_, key, &KeptPlace::key);
    return found == places_.end() || IsForgotten() ? std::nullopt : std::optional(*found);
}

int KeptPlaces::Keep(KeptPlace place) {
    if (IsForgotten())
        places_.clear();
    place.sentence.resize(WholeCharacters(place.sentence, kMostSentence).size());
    std::erase_if(places_, [&](const KeptPlace& each) { return each.key == place.key; });
    places_.insert(places_.begin(), std::move(place));
    if (places_.size() > kMost)
        places_.pop_back();
    return Write();
}

int KeptPlaces::Forget(const std::string& key) {
    if (IsForgotten())
        places_.clear();
    return std::erase_if(places_, [&](const KeptPlace& each) { return each.key == key; }) == 0
               ? 0
               : Write();
}

void ForgetKeptPlaces() {
    RemovePrivateFile(kPlacesFile);
}

int KeptPlaces::Write() {
    std::vector<std::string> fields;
    for (const KeptPlace& each : places_)
        fields.insert(fields.end(), {each.key, each.digest, std::to_string(each.size),
                                     std::to_string(each.place), each.sentence});
    const int error = WriteKeptFields(kPlacesFile, fields);
    isThere_ = isThere_ || error == 0;
    return error;
}

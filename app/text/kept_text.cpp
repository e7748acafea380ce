#include "app/text/kept_text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <string_view>

#include "app/reading/kept_bookmarks.h"
#include "app/reading/kept_queue.h"
#include "app/settings_keys.h"
#include "foundation/files/file.h"
#include "foundation/files/folder_iterator.h"
#include "foundation/files/private_file.h"
#include "foundation/owned_text.h"

namespace {

constexpr const char* kTextFile = "text";
constexpr const char* kPlaceFile = "text-place";  // the cursor's in decimal, a newline, the file
constexpr std::size_t kMostPlaceBytes = 1 << 16;
constexpr const char* kStructureFile = "text-structure";
constexpr std::size_t kMostStructureBytes = 16 << 20;

constexpr std::string_view kOfTextLine = "of ";  // its checksum, before the structure's own lines

// A crash between the two files must not give a text the structure of another.
std::string WithText(const std::string& structure, std::string_view text) {
    if (structure.empty())
        return {};
    const OwnedText sum(g_compute_checksum_for_data(
        G_CHECKSUM_SHA1, reinterpret_cast<const guchar*>(text.data()), text.size()));
    return std::string(kOfTextLine) + sum.get() + "\n" + structure;
}

std::string StructureOf(std::string_view text, const std::string& kept) {
    const std::size_t begin = kept.starts_with(kOfTextLine) ? kept.find('\n') + 1 : 0;
    const std::string structure = kept.substr(begin);
    return begin == 0 || WithText(structure, text) == kept ? structure : std::string();
}

// A crash loses at most so much; a text that takes long to write is written less often.
constexpr guint kPauseMs = 2000;
constexpr int kPausePerWrite = 20;

}  // namespace

void KeptText::Attach(GtkTextBuffer* buffer, const LongLines& lines) {
    buffer_ = buffer;
    lines_ = &lines;
    pauseMs_ = kPauseMs;
    Restore();
    changed_.Connect(buffer, "changed", G_CALLBACK(GCChanged), this);
    markSet_.Connect(buffer, "mark-set", G_CALLBACK(GCMarkSet), this);
}

void KeptText::Restore() {
    std::string text;
    if (!kKeepTextSetting.Get() || !ReadPrivateFile(kTextFile, kMostBytes, text) ||
        g_utf8_validate(text.data(), static_cast<gssize>(text.size()), nullptr) == FALSE)
        return;
    gtk_text_buffer_set_text(buffer_, text.data(), static_cast<gint>(text.size()));
    if (std::string kept; ReadPrivateFile(kStructureFile, kMostStructureBytes, kept))
        keptStructure_ = StructureOf(text, kept);
    std::string place;
    ReadPrivateFile(kPlaceFile, kMostPlaceBytes, place);
    int offset = 0;
    std::from_chars(place.data(), place.data() + place.size(), offset);
    const GtkTextIter at = lines_->At(std::max(offset, 0));
    gtk_text_buffer_place_cursor(buffer_, &at);
    const std::size_t line = place.find('\n');
    file_ = line == std::string::npos ? "" : place.substr(line + 1);
}

void KeptText::CameFromFile(const std::string& path) {
    isPrivate_ = false;
    file_ = path;
    isTextDue_ = true;
    KeepSoon();
}

void KeptText::CameFromProgram() {
    isPrivate_ = true;
    file_.clear();
    isTextDue_ = isPlaceDue_ = false;
    timer_.Stop();
}

void KeptText::GCChanged(GtkTextBuffer* buffer, gpointer user) {
    auto* self = static_cast<KeptText*>(user);
    self->isPrivate_ = false;
    self->isTextDue_ = true;
    if (gtk_text_buffer_get_char_count(buffer) == 0)
        self->file_.clear();
    self->KeepSoon();
}

void KeptText::GCMarkSet(GtkTextBuffer* buffer, GtkTextIter*, GtkTextMark* mark, gpointer user) {
    auto* self = static_cast<KeptText*>(user);
    if (mark != gtk_text_buffer_get_insert(buffer) || self->isPrivate_)
        return;
    self->isPlaceDue_ = true;
    self->KeepSoon();
}

// What changes until then is kept with it: whoever types on and on is not left for later.
void KeptText::KeepSoon() {
    if (timer_.IsRunning())
        return;
    timer_.Start(pauseMs_, [this] {
        const gint64 before = g_get_monotonic_time();
        Keep();
        const auto tookMs = static_cast<guint>((g_get_monotonic_time() - before) / 1000);
        pauseMs_ = std::max(kPauseMs, tookMs * kPausePerWrite);
    });
}

void KeptText::KeepNow() {
    timer_.Stop();
    Keep();
}

bool KeptText::Write(const char* name, const std::string& content) {
    const int error = content.size() > kMostBytes ? EFBIG : WritePrivateFile(name, content);
    if (error != 0 && !isTold_)
        tell_(
            (std::string("The text cannot be kept for the next start: ") + g_strerror(error) + ".")
                .c_str());
    isTold_ = isTold_ || error != 0;
    return error == 0;
}

void KeptText::Keep() {
    if (buffer_ == nullptr || isPrivate_)
        return;
    if (!kKeepTextSetting.Get()) {
        ForgetKeptText();
        return;
    }
    if (!isTextDue_ && !isPlaceDue_)
        return;
    if (isTextDue_) {
        const std::string text(lines_->Text());
        Write(kStructureFile, WithText(structure_ ? structure_() : "", text));
        isTextDue_ = !Write(kTextFile, text);
    }
    GtkTextIter at;
    gtk_text_buffer_get_iter_at_mark(buffer_, &at, gtk_text_buffer_get_insert(buffer_));
    isPlaceDue_ = !Write(kPlaceFile, std::to_string(lines_->Offset(at)) + "\n" + file_);
}

void ForgetKeptText() {
    RemovePrivateFile(kTextFile);
    RemovePrivateFile(kPlaceFile);
    RemovePrivateFile(kStructureFile);
    ForgetKeptPlaces();
    ForgetKeptBookmarks();
    ForgetKeptQueue();
    RemoveBookTexts({});
}

void RemoveBookTexts(const std::set<std::string>& kept) {
    const std::string folder = PrivateFilePath("");
    std::set<std::string> old;
    LFile::FolderIteratorAllFiles files;
    for (files.Open(folder.c_str()); files.Next();)
        if (std::string_view(files.Name()).starts_with(kBookTextPrefix) &&
            !kept.contains(files.Name()))
            old.insert(files.Name());
    for (const std::string& file : old)
        RemovePrivateFile(file.c_str());
}

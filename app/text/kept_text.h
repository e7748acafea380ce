// The text of the window from one run to the next: what was typed is there again after an end, a
// logout and a crash.
#pragma once

#include <gtk/gtk.h>

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "app/text/long_lines.h"
#include "gui/gui_timer.h"
#include "gui/signal_owner.h"

// Kept are the text, the place of the cursor and the file it came from, for this user alone. What
// only came from another program, by its selection or the clipboard, is not kept until it is
// edited; what was typed before it then stays kept. An option keeps nothing. GUI thread.
class KeptText {
public:
    // Longer ones are not kept, which is told.
    static constexpr std::size_t kMostBytes = 256 * 1024 * 1024;

    // tell: once a run, when the text cannot be kept.
    explicit KeptText(std::function<void(const char*)> tell) : tell_(std::move(tell)) {}

    // Once, with the lines attached to the same buffer, which outlive this object. Puts the text of
    // the last run into the empty buffer.
    void Attach(GtkTextBuffer* buffer, const LongLines& lines);
    // What is known of the text, asked for whenever it is kept; as it was kept last, once.
    void KeepStructure(std::function<std::string()> structure) {
        structure_ = std::move(structure);
    }
    std::string TakeStructure() { return std::move(keptStructure_); }

    // What has just come into the buffer is a file's, or another program's. Its former text is kept
    // by KeepNow before.
    void CameFromFile(const std::string& path);
    void CameFromProgram();
    // False: another program's, and unedited.
    bool IsKept() const { return !isPrivate_; }
    // Empty: the text came from no file.
    const std::string& File() const { return file_; }

    // At the end, and before another program's text comes into the buffer. Otherwise it happens by
    // itself some seconds after each change.
    void KeepNow();

private:
    void Restore();
    void Keep();
    void KeepSoon();
    bool Write(const char* name, const std::string& content);
    static void GCChanged(GtkTextBuffer* buffer, gpointer self);
    static void GCMarkSet(GtkTextBuffer* buffer, GtkTextIter* at, GtkTextMark* mark, gpointer self);

    std::function<void(const char*)> tell_;
    GtkTextBuffer* buffer_ = nullptr;
    const LongLines* lines_ = nullptr;
    LSignalOwner changed_;
    LSignalOwner markSet_;
    LGuiTimer timer_;
    std::string file_;
    std::function<std::string()> structure_;
    std::string keptStructure_;
    bool isTextDue_ = false;
    bool isPlaceDue_ = false;
    bool isPrivate_ = false;  // another program's, and unedited
    bool isTold_ = false;
    guint pauseMs_ = 0;  // between two writes
};

// What was kept is gone from the disk, with the places and bookmarks of all texts, and what
// unfinished audiobooks are made of.
void ForgetKeptText();

// Private files that hold the texts of unfinished audiobooks begin so.
inline constexpr char kBookTextPrefix[] = "audiobook-text-";
// All but these.
void RemoveBookTexts(const std::set<std::string>& kept);

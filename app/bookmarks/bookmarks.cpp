#include "app/bookmarks/bookmarks.h"

#include <gdk/gdkkeysyms.h>
#include <glib.h>

#include <cerrno>
#include <utility>

#include "app/bookmarks/bookmarks_dialog.h"
#include "app/commands/command_numbers.h"
#include "app/settings_keys.h"
#include "speech/text_places.h"

void Bookmarks::AddCommands() {
    static constexpr CommandRow<Bookmarks> kRows[] = {
        {{.number = kSetBookmark,
          .label = "Set &Bookmark",
          .keys = {kKeyControl | GDK_K},
          .needs = kNeedsText},
         &Bookmarks::CmSet},
        {{.number = kBookmarks,
          .label = "Bookmar&ks...",
          .keys = {kKeyControl | kKeyShift | GDK_K},
          .needs = kNeedsText},
         &Bookmarks::CmList},
    };
    parts_.commands.Add(*this, kRows);
}

std::string Bookmarks::Key() const {
    return parts_.text.File().empty() ? KeyOfWindowText(parts_.text.Text())
                                      : KeyOfFile(parts_.text.File());
}

// The bookmark of what another program selected would be a trace of it.
bool Bookmarks::MayKeep() const {
    if (!kKeepTextSetting.Get())
        Tell(
            "Bookmarks are kept only while the option \"Keep the text for the next start\" is on.");
    else if (!parts_.text.IsKept())
        Tell("A text from another program has no bookmarks unless it is saved (Ctrl+S).");
    else
        return true;
    return false;
}

// What is heard, where it still stands in the text as it was; else the cursor.
TextToRead Bookmarks::Here() const {
    if (parts_.narrator.IsReading()) {
        const std::size_t place = parts_.narrator.Place();
        if (const auto heard = parts_.text.Highlight().PlaceNow(place, place + 1))
            return parts_.text.Start().From(*heard);
    }
    return parts_.text.Start().FromCursor();
}

void Bookmarks::CmSet() {
    if (!MayKeep())
        return;
    const TextToRead here = Here();
    const std::size_t place = SentenceAt(here.text, here.begin);
    std::string sentence = here.text.substr(place, KeptPlaces::kMostSentence);
    if (const std::size_t line = sentence.find('\n'); line != std::string::npos)
        sentence.resize(line);
    const Bookmark bookmark{.at = {.key = Key(),
                                   .digest = KeyOfText(here.text),
                                   .size = here.text.size(),
                                   .place = place,
                                   .sentence = std::move(sentence)}};
    KeptBookmarks kept;
    kept.TakeAlong(bookmark.at.key, here.text);
    std::string gone;
    const int error = kept.Set(bookmark, &gone);
    if (error == ENOBUFS)
        return Tell("There are " + std::to_string(KeptBookmarks::kMost) +
                    " bookmarks already: remove one first.");
    if (error != 0)
        return Tell(std::string("The bookmark cannot be kept: ") + g_strerror(error) + ".");
    Tell("Bookmark: \"" + bookmark.Title() + "\"" +
         (gone.empty() ? "" : "; the one at \"" + gone + "\", in a text that is gone, made room"));
}

void Bookmarks::CmList() {
    const std::string key = Key();
    KeptBookmarks kept;
    if (const int error = kept.TakeAlong(key, parts_.text.Text()); error != 0)
        return Tell(std::string("The bookmarks cannot be kept: ") + g_strerror(error) + ".");
    if (kept.Of(key).empty())
        return Tell("There is no bookmark in this text yet (Ctrl+K sets one).");
    BookmarksDialog dialog(key, parts_.text.Text());
    const auto chosen = dialog.Run(parts_.parent());
    if (!chosen)
        return;
    // A file that waited to be read may have come meanwhile.
    if (key == Key() && !parts_.text.IsEmpty())
        GoTo(*chosen);
    else
        Tell("Another text has come meanwhile.");
}

void Bookmarks::GoTo(const Bookmark& bookmark) {
    const auto place = FindPlace(bookmark.at, parts_.text.Text());
    if (!place && parts_.text.Structure().IsPart())
        return Tell("The page of this bookmark is not here yet: choose it again when it has come.");
    if (!place)
        return Tell("The text has changed: the sentence of this bookmark is not in it.");
    const GtkTextIter at = parts_.text.PlaceCursor(*place);
    if (!parts_.goOn(at))
        Tell("At the bookmark \"" + bookmark.Title() + "\" (Ctrl+Enter reads from here)");
}

#include "app/listening/read_aloud.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

#include "app/commands/command_numbers.h"
#include "app/document_text.h"
#include "app/settings_keys.h"
#include "gui/icon_numbers.h"
#include "speech/text_places.h"

namespace {

constexpr LKeyCode kReadKey = kKeyControl | kKeyShift | GDK_R;

const char* NameOf(ReadFrom from) {
    switch (from) {
        case ReadFrom::kSelection:
            return "Read Selection";
        case ReadFrom::kCursor:
            return "Read from Cursor";
        case ReadFrom::kBeginning:
            break;
    }
    return "Read Aloud";
}

}  // namespace

ReadAloud::ReadAloud(const Parts& parts)
    : parts_(parts),
      news_(parts_.narrator.News(), [this](const ReadingNews& news) { Hear(news); }) {}

void ReadAloud::AddCommands() {
    static constexpr CommandRow<ReadAloud> kRows[] = {
        {{.number = kReadCurrent,
          .also = {kReadAllOfWindow, kReadSelectionOfWindow},
          .label = "Read Current&Text",
          .name = "Read current text",
          .tip = "Read aloud the Lectora window",
          .icon = kReadAloudIcon,
          .keys = {kReadKey},
          .needs = kNeedsText},
         &ReadAloud::CmRead},
        {{.number = kReadFromHere,
          .label = "Read from &Here",
          .keys = {kKeyControl | GDK_Return, kKeyControl | GDK_KP_Enter},
          .needs = kNeedsText},
         &ReadAloud::CmReadFromHere},
        {{.number = kReadButton,
          .name = "Read Aloud",
          .tip = "Read the current text aloud",
          .icon = kReadButtonIcon,
          .keys = {kReadKey},
          .needs = kNeedsTextOrReading},
         &ReadAloud::CmStopOrGoOn},
    };
    parts_.commands.Add(*this, kRows);
}

void ReadAloud::CmRead() {
    const ReadFrom from = parts_.text.Start().Which();
    Begin(parts_.text.Start().Take(from), from != ReadFrom::kSelection);
}

void ReadAloud::ReadFromPlace(const GtkTextIter& place) {
    Begin(parts_.text.Start().From(place), true);
}

void ReadAloud::ReadAt(std::size_t byte) {
    TextToRead what = parts_.text.Start().Take(ReadFrom::kBeginning);
    what.begin = byte;
    Begin(std::move(what), true);
}

// A selection, as the find bar makes one, is a place too.
void ReadAloud::CmReadFromHere() {
    Begin(parts_.text.Start().FromCursor(), true);
}

void ReadAloud::Begin(TextToRead what, bool isWhole) {
    if (parts_.turn.IsTaken() || what.text.empty())
        return;
    const std::size_t begin = what.begin == 0 ? 0 : WordAt(what.text, what.begin);
    if (begin == what.text.size()) {
        parts_.window.TellStatusText("There is no text behind that place.");
        return;
    }
    parts_.player.Expect({parts_.window.Widget(), parts_.window.GetControlByID(kTextBox)});
    // The engine may be slow to wake up, or have been installed since the program was started.
    const int voice = parts_.voices.Chosen();
    ReadingText text = DocumentText(parts_.text, std::move(what.text), what.offset);
    text.begin = begin;
    if (isWhole) {
        text.title = parts_.text.Title();
        text.isGrowing = parts_.isComing();
        text.chapters = parts_.text.Structure().ChapterPlaces();
    }
    isWhole_ = isWhole;
    parts_.narrator.Read(std::move(text), voice);
    parts_.text.Highlight().Begin(what.start, kFollowTextSetting.Get());
    if (voice < 0)
        parts_.voices.Ask();
}

bool ReadAloud::GoOnAt(const GtkTextIter& place) {
    const auto there = parts_.text.Highlight().PlaceOf(place);
    if (!there || !parts_.narrator.IsReading())
        return false;
    parts_.narrator.MoveToPlace(*there);
    return true;
}

// The button is down while it reads, and pressing it then lets go; up while it is paused.
void ReadAloud::CmStopOrGoOn() {
    if (parts_.narrator.State() == ReadingState::kPaused)
        parts_.narrator.Play();
    else if (parts_.narrator.IsReading())
        parts_.narrator.Stop();
    else
        CmRead();
}

void ReadAloud::Hear(const ReadingNews& news) {
    if (!news.IsNew() || !parts_.window.IsOpen())
        return;
    ShowState();
    ShowStart();
}

void ReadAloud::ShowState() {
    const ReadingState state = parts_.narrator.State();
    if (IsReading(state) && state != ReadingState::kPaused)
        parts_.window.SetCoolButtonDown(kReadButton);
    else
        parts_.window.SetCoolButtonUp(kReadButton);
}

// While it reads, the button is about that. From the main loop: it may be what was pressed.
void ReadAloud::ShowStart() {
    if (shownStart_ == StartOfButton() || naming_.IsRunning())
        return;
    naming_.Start(0, [this] {
        shownStart_ = StartOfButton();
        if (!parts_.window.IsOpen())
            return;
        parts_.window.CoolButtonInit(kReadButton, kReadButtonIcon, NameOf(shownStart_));
        ShowState();
    });
}

ReadFrom ReadAloud::StartOfButton() const {
    return parts_.narrator.IsReading() ? ReadFrom::kBeginning : parts_.text.Start().Which();
}

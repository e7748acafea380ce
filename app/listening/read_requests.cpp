#include "app/listening/read_requests.h"

#include <gdk/gdkkeysyms.h>

#include <utility>

#include "app/commands/command_numbers.h"

ReadRequests::ReadRequests(Parts parts)
    : parts_(std::move(parts)), news_(parts_.narrator.News(), [this](const ReadingNews& news) {
          if (news.HasBegun())
              offered_ = parts_.sources.Offered();
      }) {}

void ReadRequests::AddCommands() {
    static constexpr CommandRow<ReadRequests> kRows[] = {
        {{.number = kReadFromFile,
          .also = {kReadFromFileMenu},
          .label = "Read from fil&e",
          .name = "Read from a file",
          .tip = "Read the text from the file",
          .keys = {kKeyControl | kKeyShift | GDK_O}},
         &ReadRequests::CmReadFromFile},
        {{.number = kReadFileLater,
          .label = "Read a &File Later...",
          .keys = {kKeyControl | kKeyAlt | GDK_L}},
         &ReadRequests::CmReadFileLater},
        {{.number = kReadFromSelection,
          .label = "Read from Clipboar&d",
          .name = "Read from clipboard",
          .tip = "Read aloud the selection or clipboard",
          .keys = {kKeyControl | kKeyShift | GDK_B},
          .needs = kNeedsSelection},
         &ReadRequests::CmReadFromSelection},
        {{.number = kReadSelectionOrPause}, &ReadRequests::CmReadSelectionOrPause},
    };
    parts_.commands.Add(*this, kRows);
}

// Without a file the command ends.
void ReadRequests::CmReadFromFile() {
    if (!parts_.sources.OpenFile())
        return;
    parts_.read.CmRead();
    parts_.keeper.TextCame();  // it is heard from its beginning until its user has answered
}

// At once where nothing is read.
void ReadRequests::CmReadFileLater() {
    const std::string path = parts_.sources.ChooseFile();
    if (path.empty())
        return;
    Await(path);
    if (parts_.narrator.IsReading())
        parts_.window.TellStatusText(("Will be read: " + path).c_str());
}

void ReadRequests::Await(const std::string& path) {
    parts_.narrator.Queue({.begin = [this, path] { return ReadWaitingFile(path); }, .path = path});
}

void ReadRequests::CmReadFromSelection() {
    parts_.sources.UpdateThen([this] { parts_.read.CmRead(); });
}

// Pressed again without anything new to read, the hotkey pauses, and then goes on. What is not
// heard yet is stopped: the next press reads it anew.
void ReadRequests::CmReadSelectionOrPause() {
    if (!parts_.narrator.IsReading()) {
        CmReadFromSelection();
        return;
    }
    parts_.sources.Fetch([this](const std::string& text) {
        // Selected or copied since the reading began. The text in the window may have been edited.
        const bool isNew = !text.empty() && parts_.sources.Offered() != offered_ &&
                           text != parts_.narrator.Text() && text != parts_.text.Text();
        if (parts_.narrator.IsReading() && !isNew) {
            CommandSet& commands = parts_.commands;
            commands.Run(commands.CanAct(kPlayOrPause) ? kPlayOrPause : kStopReading);
            return;
        }
        // The reading ended while the other programs were asked: there is nothing to pause.
        if (!text.empty() && parts_.sources.Take(text))
            parts_.read.CmRead();
    });
}

void ReadRequests::ReadFiles(const std::vector<std::string>& files) {
    if (!parts_.turn.IsTaken())
        parts_.narrator.Stop();
    for (const std::string& path : files)
        Await(path);
}

void ReadRequests::TakeDropped(const std::vector<std::string>& files) {
    drop_.Start(0, [this, files] {
        if (!parts_.window.IsOpen())
            return;
        if (files.size() == 1 && !parts_.turn.IsTaken())
            parts_.sources.LoadFile(files.front());
        else
            ReadFiles(files);
    });
}

void ReadRequests::BeginWithKeyboard() {
    firstKeyboard_.Start(parts_.window.Widget(), [this] { parts_.narrator.ContinueQueueSoon(); });
}

bool ReadRequests::CanBegin() const {
    return parts_.window.IsOpen() && !firstKeyboard_.IsWaiting();
}

QueuedText::Begun ReadRequests::ReadWaitingFile(const std::string& path) {
    if (!CanBegin() || parts_.turn.IsTaken())
        return QueuedText::Begun::kNotNow;
    if (!parts_.sources.LoadFile(path, TextSources::FileFrom::kElsewhere))
        return QueuedText::Begun::kFailed;
    parts_.read.CmRead();
    parts_.keeper.TextCame();  // it is heard from its beginning until its user has answered
    return parts_.narrator.IsReading() ? QueuedText::Begun::kYes : QueuedText::Begun::kFailed;
}

bool ReadRequests::IsBusy(const VerbReplyRef& reply) {
    if (!parts_.turn.IsTaken())
        return false;
    CommandTurn::PresentDialog();
    reply->NotDone("Lectora waits for an answer in one of its windows.");
    return true;
}

void ReadRequests::ReadFor(SelectionWatch::From from, const VerbReplyRef& reply) {
    if (IsBusy(reply))
        return;
    const auto read = [this, reply, from](const std::string& text) {
        if (text.empty()) {
            const char* note = from == SelectionWatch::From::kSelection
                                   ? "No text is selected in any other program."
                                   : "There is no text on the clipboard.";
            parts_.tellAnywhere("There is nothing to read.", note);
            reply->NotDone(note);
            return;
        }
        if (!parts_.sources.Take(text, TextSources::FileFrom::kElsewhere)) {
            reply->NotDone("Lectora could not read " + text);
            return;
        }
        parts_.read.CmRead();
        if (parts_.narrator.IsReading())
            reply->Done();
    };
    parts_.sources.Fetch(read, from);
}

void ReadRequests::ReadFileFor(const std::string& path, const VerbReplyRef& reply) {
    if (IsBusy(reply))
        return;
    parts_.narrator.Stop();
    parts_.narrator.Queue({.begin = [this, reply, path] {
        const QueuedText::Begun begun = ReadWaitingFile(path);
        if (begun == QueuedText::Begun::kYes)
            reply->Done();
        else if (begun == QueuedText::Begun::kFailed)
            reply->NotDone("Lectora could not read " + path);
        return begun;
    }});
}

ControlledWindow ReadRequests::Ways() {
    CommandSet& commands = parts_.commands;
    return {.run = [&commands](
                       int command) { return commands.CanAct(command) && commands.Run(command); },
            .canRun = [&commands](int command) { return commands.CanAct(command); },
            .show = [this] { parts_.window.CmOpen(); },
            .isReady = [this] { return CanBegin(); },
            .read =
                [this](ControlledWindow::Source source, const VerbReplyRef& reply) {
                    ReadFor(source == ControlledWindow::Source::kSelection
                                ? SelectionWatch::From::kSelection
                                : SelectionWatch::From::kClipboard,
                            reply);
                },
            .readFile = [this](const std::string& path,
                               const VerbReplyRef& reply) { ReadFileFor(path, reply); }};
}

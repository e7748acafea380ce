// What the main window does for those who ask from outside it.
#include <utility>

#include "app/main_dialog.h"

struct MainDialog::Outside {
    static bool IsBusy(MainDialog& window, const VerbReplyRef& reply);
    static void Read(MainDialog& window, SelectionWatch::From from, const VerbReplyRef& reply);
    static void ReadFile(MainDialog& window, const std::string& path, const VerbReplyRef& reply);
};

bool MainDialog::Outside::IsBusy(MainDialog& window, const VerbReplyRef& reply) {
    if (!window.saving_ && !window.loading_)
        return false;
    PresentWaitingDialog();
    reply->NotDone("Lectora waits for an answer in one of its windows.");
    return true;
}

void MainDialog::Outside::Read(MainDialog& window, SelectionWatch::From from,
                               const VerbReplyRef& reply) {
    if (IsBusy(window, reply))
        return;
    const auto read = [&window, reply, from](const std::string& text) {
        if (text.empty()) {
            const char* note = from == SelectionWatch::From::kSelection
                                   ? "No text is selected in any other program."
                                   : "There is no text on the clipboard.";
            window.TellOutside("There is nothing to read.", note);
            reply->NotDone(note);
            return;
        }
        window.text_.TakeFromProgram(text);
        window.CmRead();
        if (window.narrator_.IsReading())
            reply->Done();
    };
    window.FetchText(read, from);
}

void MainDialog::Outside::ReadFile(MainDialog& window, const std::string& path,
                                   const VerbReplyRef& reply) {
    if (IsBusy(window, reply))
        return;
    window.narrator_.Stop();
    window.narrator_.Queue({.begin = [&window, reply, path] {
        const QueuedText::Begun begun = window.ReadWaitingFile(path);
        if (begun == QueuedText::Begun::kYes)
            reply->Done();
        else if (begun == QueuedText::Begun::kFailed)
            reply->NotDone("Lectora could not read " + path);
        return begun;
    }});
}

ControlledWindow MainDialog::ControlWays() {
    return {
        .run = [this](int command) { return commands_.CanAct(command) && commands_.Run(command); },
        .canRun = [this](int command) { return commands_.CanAct(command); },
        .show = [this] { CmOpen(); },
        .read =
            [this](ControlledWindow::Source source, const VerbReplyRef& reply) {
                Outside::Read(*this,
                              source == ControlledWindow::Source::kSelection
                                  ? SelectionWatch::From::kSelection
                                  : SelectionWatch::From::kClipboard,
                              reply);
            },
        .readFile = [this](const std::string& path,
                           const VerbReplyRef& reply) { Outside::ReadFile(*this, path, reply); }};
}

// What comes of it the window tells: nobody waits for an answer.
void MainDialog::DoAtStart(const VerbFacts& verb, const std::string& operand) {
    if (verb.verb == Verb::kReadFile) {
        ReadFiles({operand});
        return;
    }
    // As the files of a start do, it waits until the window has the keyboard.
    narrator_.Queue({.begin = [this, verb, operand] {
        if (!IsOpen() || firstKeyboard_.IsWaiting())
            return QueuedText::Begun::kNotNow;
        control_.Do(verb.verb, operand, std::make_shared<VerbReply>(nullptr));
        return QueuedText::Begun::kFailed;  // what it reads comes later, by itself
    }});
}

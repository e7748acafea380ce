#include "app/control/remote_control.h"

#include <algorithm>
#include <utility>

#include "app/commands/command_numbers.h"

namespace {

const char* WordOf(ReadingState state) {
    switch (state) {
        case ReadingState::kWaitingForVoice:
        case ReadingState::kWaitingForSound:
            return "waiting";
        case ReadingState::kPlaying:
            return "reading";
        case ReadingState::kPaused:
            return "paused";
        case ReadingState::kIdle:
        case ReadingState::kEnded:
            break;
    }
    return "stopped";
}

std::string TimeText(LSoundTime time) {
    char text[kSoundTimeTextSize];
    time._GetText0(text);
    return text;
}

std::string PlaceText(const ReadingNews& news) {
    if (!IsReading(news.state))
        return "";
    return TimeText(news.time) + (news.isLengthKnown ? " of " : " of about ") +
           TimeText(news.length);
}

// With blanks in the place of line ends, tabs and whatever else a terminal would act on.
std::string OneLine(const std::string& text) {
    std::string line;
    for (const char character : text) {
        const bool isBlank = static_cast<unsigned char>(character) <= ' ' || character == '\x7f';
        if (!isBlank)
            line += character;
        else if (!line.empty() && line.back() != ' ')
            line += ' ';
    }
    if (line.ends_with(' '))
        line.pop_back();
    return line;
}

}  // namespace

std::string StatusLine(const Narrator& narrator) {
    const ReadingNews news = narrator.Now();
    std::string sentence;
    if (news.stretch) {
        const std::string& text = narrator.Text();
        const std::size_t begin = std::min(news.stretch->sourceBegin, text.size());
        sentence = OneLine(text.substr(begin, news.stretch->sourceEnd - begin));
    }
    return std::string(WordOf(news.state)) + "\t" + OneLine(news.title) + "\t" + PlaceText(news) +
           "\t" + sentence;
}

RemoteControl::RemoteControl(Narrator& narrator, ControlledWindow window)
    : narrator_(narrator), window_(std::move(window)), player_(narrator, window_) {}

void RemoteControl::Do(Verb verb, const std::string& operand, const VerbReplyRef& reply) {
    switch (verb) {
        case Verb::kReadSelection:
            return window_.read(ControlledWindow::Source::kSelection, reply);
        case Verb::kReadClipboard:
            return window_.read(ControlledWindow::Source::kClipboard, reply);
        case Verb::kReadFile:
            return window_.readFile(operand, reply);
        case Verb::kTogglePause:
            return Run(kPlayOrPause, reply);
        case Verb::kStop:
            return Run(kStopReading, reply);
        case Verb::kNextSentence:
            return Run(kNextSentence, reply);
        case Verb::kPreviousSentence:
            return Run(kPreviousSentence, reply);
        case Verb::kFaster:
        case Verb::kSlower:
            Run(verb == Verb::kFaster ? kFaster : kSlower, reply);
            return;
        case Verb::kStatus:
            return reply->Done(StatusLine(narrator_));
    }
}

// Among the texts that wait.
void RemoteControl::DoOnceReady(Verb verb, const std::string& operand) {
    narrator_.Queue({.begin = [this, verb, operand] {
        if (!window_.isReady())
            return QueuedText::Begun::kNotNow;
        Do(verb, operand, std::make_shared<VerbReply>(nullptr));
        return QueuedText::Begun::kFailed;  // what it reads comes later, by itself
    }});
}

void RemoteControl::Run(int command, const VerbReplyRef& reply) {
    if (window_.run(command))
        return reply->Done();
    if (narrator_.IsReading())
        return reply->NotDone("Nothing is heard yet.");
    reply->NotDone(command == kPlayOrPause ? "There is no text to read."
                                           : "Nothing is being read.");
}

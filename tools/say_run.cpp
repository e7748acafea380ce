#include "tools/say_run.h"

#include <errno.h>

#include <algorithm>
#include <cstdio>

#include "foundation/files/work_folder.h"
#include "speech/chosen_voice.h"
#include "speech/voice_list_query.h"
#include "speech/voice_table.h"
#include "tools/interruption.h"
#include "tools/say_book.h"
#include "tools/say_document.h"
#include "tools/say_print.h"
#include "tools/say_text.h"
#include "tools/terminal_progress.h"
#include "tools/tool_texts.h"

namespace {

int FailSaying(const std::string& path, const std::string& error) {
    Complain(kSayProgram, path + ": " + error);
    return kExitFailed;
}

// Position in the list of voices, -1 when there is no such voice.
int VoiceAsked(const SayOptions& options, int count) {
    if (!options.voice)
        return ChosenVoice();
    int index = FindVoice(*options.voice);
    if (index < 0 && !ParseNumber(options.voice->c_str(), 0, count - 1, index))
        return -1;
    return index;
}

// How many there are; 0 when there are none, which has been told.
int AskForVoices() {
    LTerminalProgress progress;
    VoiceListQuery query;
    const LProcessResult asked = Process(progress, query);
    if (asked == kProcessFailed)
        Complain(kSayProgram,
                 "no speech engine answers: is festival or espeak-ng installed, with a "
                 "voice?");
    return asked == kProcessDone ? CountVoices() : 0;
}

// Columns between tabs, so that other programs can take them apart.
int ListVoices() {
    int number = 0;
    for (const Voice& voice : KnownVoices())
        std::printf("%d\t%s\t%s\t%s\t%s\n", number++, voice.name.c_str(), voice.engine.c_str(),
                    voice.language.empty() ? "-" : voice.language.c_str(), voice.title.c_str());
    return kExitDone;
}

int SayOne(const SayOptions& options, const SayJob& job, int voice, const WorkFolder& folder) {
    const Document document = ReadSayDocument(job.text, options.rules);
    if (!document.problem.empty())
        return FailSaying(NameOfText(job.text), document.problem);
    if (options.book)
        return SayBook(options, job, document, voice, folder.Path());
    return SayText(options, job, document, voice, folder.Path());
}

}  // namespace

int RunSay(const SayOptions& options) {
    if (options.printsText && *options.printsText != TextForm::kSpoken)
        return PrintTexts(options, 0);
    const int count = AskForVoices();
    if (count == 0)
        return kExitFailed;
    if (options.listsVoices)
        return ListVoices();
    const int voice = VoiceAsked(options, count);
    if (voice < 0) {
        Complain(kSayProgram, *options.voice + ": no such voice; --list-voices lists them");
        return kExitFailed;
    }
    if (options.printsText)
        return PrintTexts(options, voice);
    const WorkFolder folder(kSayProgram);
    if (!folder.IsMade())
        return FailSaying("temporary folder", ErrorText(errno));
    int status = kExitDone;
    for (const SayJob& job : options.jobs) {
        status = std::max(status, SayOne(options, job, voice, folder));
        if (IsInterrupted())
            break;
    }
    return status;
}

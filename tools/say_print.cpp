#include "tools/say_print.h"

#include <glib.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "foundation/files/file_io.h"
#include "speech/character_tables.h"
#include "speech/sentences.h"
#include "speech/speech_pieces.h"
#include "speech/synthesis.h"
#include "speech/voice_table.h"
#include "tools/interruption.h"
#include "tools/say_document.h"
#include "tools/tool_texts.h"

namespace {

// In one line: any white space becomes a blank.
void AppendLine(std::string_view text, std::string& printed) {
    constexpr std::string_view kBlanks = " \t\r\n\f";
    for (std::size_t at = text.find_first_not_of(kBlanks); at != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(kBlanks, at), text.size());
        printed += text.substr(at, end - at);
        at = text.find_first_not_of(kBlanks, end);
        printed += at == std::string_view::npos ? '\n' : ' ';
    }
}

// What a voice reads in its charset, as UTF-8.
std::string ForTerminal(const std::string& text, VoiceCharset charset) {
    if (IsUtf8(charset))
        return text;
    std::string utf8;
    for (const char byte : text) {
        char character[6];
        const int length = g_unichar_to_utf8(
            CharacterOfByte(static_cast<unsigned char>(byte), charset), character);
        utf8.append(character, static_cast<std::size_t>(length));
    }
    return utf8;
}

// told: what the user is to know of it beside.
std::string InForm(const SayOptions& options, const std::string& text, int voice,
                   std::string& told) {
    const TextForm form = *options.printsText;
    std::string printed;
    if (form == TextForm::kWhole) {
        printed = text;
        if (!text.empty() && text.back() != '\n')
            printed += '\n';
        return printed;
    }
    if (form == TextForm::kSentences) {
        for (const Sentence& sentence : SentencesOf(text))
            AppendLine(std::string_view(text).substr(sentence.begin, sentence.end - sentence.begin),
                       printed);
        return printed;
    }
    SpeechPieces pieces(text, voice, ReadingUse::kListening, options.speaking);
    for (SpeechPiece piece; pieces.Next(piece);)
        for (const TextUnit& unit : piece.units)
            AppendLine(ForTerminal(unit.text, VoiceAt(piece.voice).charset), printed);
    told = pieces.Message();
    if (printed.empty() && told.empty())
        told = SynthesisMessage(SynthesisOutcome::kNothingToSay);
    return printed;
}

}  // namespace

int PrintTexts(const SayOptions& options, int voice) {
    int status = kExitDone;
    for (const SayJob& job : options.jobs) {
        const Document document = ReadSayDocument(job.text, options.rules);
        std::string problem = document.problem;
        if (problem.empty()) {
            std::string told;
            const int error =
                WriteFully(STDOUT_FILENO, InForm(options, document.text, voice, told));
            problem = error == 0 ? "" : "standard output: " + ErrorText(error);
            if (!told.empty())
                Complain(kSayProgram, NameOfText(job.text) + ": " + told);
        }
        if (!problem.empty()) {
            Complain(kSayProgram, NameOfText(job.text) + ": " + problem);
            status = kExitFailed;
        }
        if (IsInterrupted())
            break;
    }
    return status;
}

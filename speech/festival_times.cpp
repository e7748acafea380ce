#include "speech/festival_times.h"

#include "speech/shell_word.h"

namespace {

// Behind each utterance that is written: its frames and rate; then for each token, which is a word
// as it stands in the text, when the first of its words that are heard begins and the last ends.
// What goes wrong here is none of the sound's concern.
constexpr std::string_view kBeforePath = "(unwind-protect (let ((f (fopen \"";
constexpr std::string_view kBehindPath =
    "\" \"w\"))) "
    "(set! tts_hooks (append tts_hooks (list (lambda (u) "
    "(unwind-protect "
    "(let ((i (wave.info (utt.wave u))) (t (utt.relation.first u 'Token)) (w nil) (b 0) (e 0)) "
    "(format f \"u %s %s\\n\" (get_param 'num_samples i 0) (get_param 'sample_rate i 0)) "
    "(while t "
    "(set! b 0) (set! e 0) (set! w (item.daughter1 t)) "
    "(while w "
    "(if (> (item.feat w 'word_end) 0) (begin "
    "(if (equal? e 0) (set! b (item.feat w 'word_start))) "
    "(set! e (item.feat w 'word_end)))) "
    "(set! w (item.next w))) "
    "(format f \"w %f %f %s\\n\" b e (item.name t)) "
    "(set! t (item.next t)))) "
    "nil) u))))) nil)";

// As it stands between the quotes of a Lisp text.
std::string Quoted(std::string_view text) {
    std::string quoted;
    for (const char character : text) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted;
}

}  // namespace

std::string FestivalTimesOption(std::string_view timesPath) {
    return "-eval " +
           ShellWord(std::string(kBeforePath) + Quoted(timesPath) + std::string(kBehindPath));
}

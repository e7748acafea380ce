#include "app/books/book_needs.h"

#include "app/help/machine_check.h"
#include "app/saving/fetch_encoder.h"
#include "formats/aac_sink.h"
#include "gui/windows/message_box.h"
#include "speech/voice_table.h"

bool HasWhatBooksNeed(GtkWidget* parent, const char* title, SoundType type) {
    if (CountVoices() == 0) {
        TellNoSpeechEngine(parent);
        return false;
    }
    if (type == SoundType::kM4b && !HasFfmpeg()) {
        MessageBoxRun(parent, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, title,
                      "M4B files need the program ffmpeg.",
                      "Your distribution has it in the package \"ffmpeg\". The other formats do "
                      "without it.");
        return false;
    }
    return type != SoundType::kMp3 || FetchMp3Encoder(parent);
}

#include "playback/alsa_card.h"

#include <alsa/asoundlib.h>

namespace {

void IgnoreMessage(const char*, int, const char*, int, const char*, ...) {}

}  // namespace

void QuietAlsa() {
    static const int quiet = snd_lib_error_set_handler(IgnoreMessage);
    static_cast<void>(quiet);
}

std::string CardDevice(int card) {
    return "hw:" + std::to_string(card);
}

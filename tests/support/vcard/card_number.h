// Which card ALSA's configuration asks for; shared by the card's PCM and control sides.
#pragma once

#include <alsa/asoundlib.h>

#include <cstdlib>

// The entry "card", which "hw:1" delivers as text or as a number; 0 when there is none.
inline int CardNumberOf(snd_config_t* conf) {
    snd_config_t* entry = nullptr;
    const char* text = nullptr;
    long number = 0;
    if (snd_config_search(conf, "card", &entry) < 0)
        return 0;
    if (snd_config_get_integer(entry, &number) >= 0)
        return static_cast<int>(number);
    return snd_config_get_string(entry, &text) >= 0 ? std::atoi(text) : 0;
}

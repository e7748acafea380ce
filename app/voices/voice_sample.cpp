#include "app/voices/voice_sample.h"

#include <unistd.h>

#include "app/reading/speech_file.h"

VoiceSample::VoiceSample()
    : narrator_(SampleFilePath()),
      waitBox_(narrator_, [this] { return parent_; }),
      troubles_(narrator_, {.parent = [this] { return parent_; }}) {
    narrator_.SpeakBy({.saysDifferently = false});
}

VoiceSample::~VoiceSample() {
    narrator_.Forget();
    ::unlink(SampleFilePath().c_str());
}

void VoiceSample::Hear(GtkWidget* parent, const std::string& text, int voice) {
    parent_ = parent;
    narrator_.Read(text, voice, "");
}

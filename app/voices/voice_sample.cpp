#include "app/voices/voice_sample.h"

#include <unistd.h>

#include <utility>

#include "app/reading/speech_file.h"

VoiceSample::VoiceSample()
    : narrator_(SampleFilePath()),
      waitBox_(narrator_, [this] { return parent_; }),
      troubles_(narrator_, {.parent = [this] { return parent_; }}) {}

VoiceSample::~VoiceSample() {
    narrator_.Forget();
    ::unlink(SampleFilePath().c_str());
}

void VoiceSample::Hear(GtkWidget* parent, const std::string& text, int voice,
                       std::vector<VoiceManner> manners) {
    parent_ = parent;
    narrator_.SpeakBy({.saysDifferently = false, .manners = std::move(manners)});
    narrator_.Read(text, voice, "");
}

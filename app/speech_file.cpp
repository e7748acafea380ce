#include "app/speech_file.h"

#include "foundation/machine_root.h"
#include "foundation/private_file.h"

std::string SpeechFilePath() {
    return HomeFolder() + "/speech.wav";
}

std::string SavingFilePath() {
    return PrivateFilePath("saving.wav");
}

#include "app/reading/speech_file.h"

#include "foundation/files/machine_root.h"
#include "foundation/files/private_file.h"

std::string SpeechFilePath() {
    return HomeFolder() + "/speech.wav";
}

std::string SampleFilePath() {
    return PrivateFilePath("sample.wav");
}

std::string SavingFilePath() {
    return PrivateFilePath("saving.wav");
}

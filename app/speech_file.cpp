#include "app/speech_file.h"

#include "foundation/file.h"
#include "foundation/machine_root.h"
#include "foundation/text_buffer.h"

std::string SpeechFilePath() {
    char path[kTextBufferSize];
    CopyText(path, HomeFolder());
    LFile::_FilePathCat(path, "speech.wav");
    return path;
}

// The header of dictation files: a version, notes and attachments in front of the audio.
#pragma once

#include "foundation/files/file_readers.h"
#include "foundation/files/text_buffer.h"

// True when the header at the file's position is valid; the file then stands behind it, otherwise
// wherever the walk stopped. Unless quiet, the text is emptied and receives a description in lines
// that end in CR LF; a quiet call still appends the two headings. Reads past the end of the file
// count as zeros.
bool ReadDCTHeader(LSharedReadFile& file, LStringLongTemplate<char>& text, bool quiet);
bool ReadDCTHeader(const char* path, LStringLongTemplate<char>& text, bool quiet);
bool SkipDCTHeader(LSharedReadFile& file);

class LDCTDecode {
public:
    // Skips a length byte and that many bytes.
    static void SkipDCTString(LSharedReadFile& file);
};

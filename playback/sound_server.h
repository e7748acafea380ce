// Whether the user's sound server plays.
#pragma once

// True when ALSA's "default" can be opened now. Waits for the answer, a second at most: a server
// that stands still would keep its caller for good. GUI thread.
bool SoundServerAnswers();

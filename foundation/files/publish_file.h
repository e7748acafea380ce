// Giving a finished file its name, so that under that name there is only ever a whole file.
#pragma once

// The file that was written beside finalPath, in the same folder, and closed, takes that name: its
// content reaches the disk before the name does, and the name is on the disk when this returns.
// Without replace a file that has come into being there meanwhile stays, and the answer is EEXIST.
// 0 or the errno; on failure the written file is still there. Any thread; waits for the disk.
int PublishFile(const char* writtenPath, const char* finalPath, bool replace);

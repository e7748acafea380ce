// The process entry point, apart from main() so that it reads as one story.
#pragma once

// Returns the process exit status: 0 after a run or a hand-over, -1 without a display and without
// arguments.
int RunLectora(int argc, char** argv);

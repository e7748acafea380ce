// Signals that end a run in good order.
#pragma once

// SIGINT, SIGTERM and SIGHUP only set a flag that the run looks at, so that an unfinished output is
// taken away; a second one ends the program at once. SIGPIPE and SIGXFSZ become write errors.
// Called once, before anything else.
void CatchInterruptions();
bool IsInterrupted();
// The exit status of a run that ended with `status`; an interrupted one ends the process here, by
// the signal that came.
int StatusOfRun(int status);

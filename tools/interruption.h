// Signals that end a run in good order.
#pragma once

// SIGINT, SIGTERM and SIGHUP only set a flag that the run looks at, so that an unfinished output is
// taken away; a second one ends the program at once. SIGPIPE and SIGXFSZ become write errors.
// Called once, before anything else.
void CatchInterruptions();
bool IsInterrupted();

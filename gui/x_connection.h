// The connection to the X server.
#pragma once

// Its socket, borrowed from the toolkit, which has been initialised. GUI thread.
int XConnectionSocket();

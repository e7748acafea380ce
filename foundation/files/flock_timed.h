// Advisory file locks with a time limit.
#pragma once

// Tries flock(fd, operation) with growing pauses: the first is timeoutMilliseconds / 32 + 1, each
// further one twice as long, and no try is made once the next pause would reach the limit. The
// operation holds LOCK_NB. False when the lock could not be had; callers go on all the same,
// because the lock only orders processes that ask for it.
bool flocktimed(int fd, int operation, int timeoutMilliseconds);

// The same lock for files that many processes write at once, asked for every few milliseconds at
// the least. Whoever writes first queues for a record lock, which keeps other writers and new
// readers of ours away until the readers before are done: otherwise readers that follow each other
// without a pause would starve it. The limit holds for the whole wait. operation is LOCK_SH or
// LOCK_EX with LOCK_NB; all locks end with the descriptor.
bool LockInTurn(int fd, int operation, int timeoutMilliseconds);

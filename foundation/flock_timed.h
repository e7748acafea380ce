// Advisory file locks with a time limit.
#pragma once

// Tries flock(fd, operation) with growing pauses: the first is timeoutMilliseconds / 32 + 1, each
// further one twice as long, and no try is made once the next pause would reach the limit. The
// operation holds LOCK_NB. False when the lock could not be had; callers go on all the same,
// because the lock only orders processes that ask for it.
bool flocktimed(int fd, int operation, int timeoutMilliseconds);

// The same lock for files that many processes write at once. flocktimed() alone would let a process
// meet a busy file at each of its few tries and then write without the lock; so our own processes
// first queue for a record lock, asked for every few milliseconds at the least, and find the flock
// free when they have it. The limit holds for the whole wait. operation is LOCK_SH or LOCK_EX with
// LOCK_NB; both locks end with the descriptor.
bool LockInTurn(int fd, int operation, int timeoutMilliseconds);

#ifndef BENCH_TIMED_COMMANDS_H
#define BENCH_TIMED_COMMANDS_H

/// The time from fork() to the end of waitpid() since this was last called, in seconds: what the host's commands
/// have taken.
__attribute__((visibility("default"))) double takeCommandSeconds();

#endif

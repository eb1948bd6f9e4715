#ifndef BENCH_TIMED_COMMANDS_H
#define BENCH_TIMED_COMMANDS_H

/// Seconds between fork() and the end of waitpid(), summed since the last call: the time of the host's commands.
__attribute__((visibility("default"))) double takeCommandSeconds();

#endif

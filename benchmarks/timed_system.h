#ifndef BENCH_TIMED_SYSTEM_H
#define BENCH_TIMED_SYSTEM_H

/// The time that commands run by system() have taken since this was last called, in seconds.
__attribute__((visibility("default"))) double takeCommandSeconds();

#endif

#ifndef VEXLO_DEBUG_LINE_H
#define VEXLO_DEBUG_LINE_H

/// The host's debug output: one line, printf-style. It is the one thing of the host that the readers
/// call; declared here as well, so that they build and run without any toolkit's headers.
void eDebug(const char *format, ...) __attribute__((format(printf, 1, 2), visibility("default")));

#endif

#ifndef VEXLO_DEBUG_LINE_H
#define VEXLO_DEBUG_LINE_H

/// The host's debug output: one line, printf-style. Declared here again, because readers use nothing else of the host
/// and need no toolkit's headers.
void eDebug(const char *format, ...) __attribute__((format(printf, 1, 2), visibility("default")));

#endif

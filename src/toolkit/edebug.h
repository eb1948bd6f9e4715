#ifndef VEXLO_EDEBUG_H
#define VEXLO_EDEBUG_H

/// One line of debug output, without a line end of its own; printf-style.
/// The host defines it and decides where the line goes.
void eDebug(const char *format, ...) __attribute__((format(printf, 1, 2), visibility("default")));

#endif

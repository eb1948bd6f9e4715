#ifndef DESK_HOST_LAST_WORDS_H
#define DESK_HOST_LAST_WORDS_H

#include "message.h"

namespace desk
{

/// From now on, reports to the viewer's half, as a message to the descriptor `out`, why this process ends during a
/// run: a signal, an uncaught exception, exit(), or lack of memory. Also ends this process when the other end of `in`
/// is closed, whatever the plugin does.
void prepareLastWords(int in, int out);

/// The console to restore if the viewer's half is killed.
void keepConsole(const ConsoleModes &console);

/// Reports an exit during a run.
void sayExit(int status);

} // namespace desk

#endif

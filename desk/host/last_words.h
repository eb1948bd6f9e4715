#ifndef DESK_HOST_LAST_WORDS_H
#define DESK_HOST_LAST_WORDS_H

#include "message.h"

namespace desk
{

/// From now on this process tells the viewer's half, by a message to the descriptor `out`, why it ends in the middle of
/// a run: by a signal of its own, an exception that nobody catches, exit(), or for want of memory. It ends by itself
/// when nobody is at the other end of `in` any more, whatever the plugin is busy with.
void prepareLastWords(int in, int out);

/// What to give back when that half has been killed.
void keepConsole(const ConsoleModes &console);

/// Tells it of an exit in the middle.
void sayExit(int status);

} // namespace desk

#endif

#ifndef DESK_VIEWER_RECORDINGS_H
#define DESK_VIEWER_RECORDINGS_H

#include "options.h"
#include "recorder.h"

namespace desk
{

/// Opens all that the command line wants recorded, by `recorder` and by the NoteLog, and then empties it. Throws an Error
/// when something of it cannot be written, or would overwrite what else is written or read: then what was recorded
/// last is left.
void openRecordings(const Options &options, Recorder &recorder);

} // namespace desk

#endif

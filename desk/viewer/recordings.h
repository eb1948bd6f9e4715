#ifndef DESK_VIEWER_RECORDINGS_H
#define DESK_VIEWER_RECORDINGS_H

#include "options.h"
#include "recorder.h"

namespace desk
{

/// Opens all recordings of the command line with `recorder` and the NoteLog, then empties them. Throws an Error when
/// one cannot be written or would overwrite another output or an input; the old recordings then remain.
void openRecordings(const Options &options, Recorder &recorder);

} // namespace desk

#endif

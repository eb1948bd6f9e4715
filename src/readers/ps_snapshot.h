#ifndef VEXLO_PS_SNAPSHOT_H
#define VEXLO_PS_SNAPSHOT_H

#include <cstdio>
#include <list>
#include <string>

/// One row of the process list.
struct PsEntry
{
	std::string text; ///< the line that `ps` printed, line end included, translated
	std::string pid;  ///< the number that the line begins with, else that of the row above; decimal
};

/// The processes that ran when `ps` did, in the order in which `ps` listed them.
struct PsSnapshot
{
	std::string header; ///< the first line of the output, line end included; empty without output
	std::list<PsEntry> rows;
};

/// Runs `ps` by way of /var/tmp/ps.tmp and waits for it; the file is gone afterwards.
/// Whatever goes wrong gives an empty header and no rows. A file that does not open is still
/// closed, as a null stream: the host's fclose must bear that.
PsSnapshot takePsSnapshot();

/// Reads `stream` (not null, left open) to its end or to a read error. A line of more than
/// 1022 characters makes several rows.
PsSnapshot parsePsSnapshot(FILE *stream);

/// Ends process `pid` by the shell's `kill -9` and waits for that command, whose success is
/// not looked at. Asks nobody, and takes any text for a pid.
void killPid(const std::string &pid);

#endif

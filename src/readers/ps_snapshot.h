#ifndef VEXLO_PS_SNAPSHOT_H
#define VEXLO_PS_SNAPSHOT_H

#include <cstdio>
#include <list>
#include <string>

/// One row of the process list.
struct PsEntry
{
	std::string text; ///< the line that `ps` printed, line end included, translated
	std::string pid;  ///< decimal number at the begin of the line, else that of the row above
};

/// The processes in the order of `ps`.
struct PsSnapshot
{
	std::string header; ///< the first line of the output, line end included; empty without output
	std::list<PsEntry> rows;
};

/// Runs `ps` by way of /var/tmp/ps.tmp, waits, and removes the file. An error gives an empty header and no rows. Also
/// closes a null stream when the file does not open: the host's fclose must accept that.
PsSnapshot takePsSnapshot();

/// Reads `stream` (not null, left open) to its end or to a read error. A line of more than 1022 characters makes
/// several rows.
PsSnapshot parsePsSnapshot(FILE *stream);

/// Kills process `pid` with the shell's `kill -9`, and waits for the command. Ignores its result, does not ask, and
/// accepts any text as pid.
void killPid(const std::string &pid);

#endif

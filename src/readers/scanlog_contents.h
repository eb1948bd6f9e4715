#ifndef VEXLO_SCANLOG_CONTENTS_H
#define VEXLO_SCANLOG_CONTENTS_H

#include <cstdio>
#include <list>
#include <string>

/// One row of the scan log's list.
struct ScanLogEntry
{
	std::string text; ///< line number from 0, a blank, and the line or a piece of it
	std::string line; ///< the whole line as read from the log, line end included
};

/// The scan log when it was read.
struct ScanLogContents
{
	/// In the order of the file; two for a line with "start at". A list, because taking entries from its front frees
	/// their memory: a log can be large.
	std::list<ScanLogEntry> entries;
	std::string summary; ///< the file's size in bytes, or that it was not found
	bool found;          ///< whether the file opened
};

/// Size in bytes of the file behind `stream`, whose position stays; -1 if it has none.
long filesize(FILE *stream);

/// Reads the log at `path` (not null). Without that file there are no entries, and the summary says so.
ScanLogContents readScanLog(const char *path);

/// Reads `stream` (not null, left open) from its position to its end or to a read error. The summary names `path`
/// (not null). A line of more than 1022 characters counts as several.
ScanLogContents parseScanLog(FILE *stream, const char *path);

#endif

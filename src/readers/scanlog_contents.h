#ifndef VEXLO_SCANLOG_CONTENTS_H
#define VEXLO_SCANLOG_CONTENTS_H

#include "scanlog_entries.h"

#include <cstdio>
#include <string>

/// What the scan log held when it was read.
struct ScanLogContents
{
	ScanLogEntries entries; ///< in the order of the file; two for a line that says "start at"
	std::string summary;    ///< the file's size in bytes, or that it was not found
	bool found;             ///< whether the file opened
};

/// Size in bytes of the file behind `stream`, whose position stays; -1 where it has none.
long filesize(FILE *stream);

/// Reads the log at `path` (not null). A file that does not open gives no entries and a summary
/// that says so.
ScanLogContents readScanLog(const char *path);

/// Reads `stream` (not null, left open) from its position to its end or to a read error.
/// `path` (not null) is named in the summary. A line of more than 1022 characters counts as
/// several.
ScanLogContents parseScanLog(FILE *stream, const char *path);

#endif

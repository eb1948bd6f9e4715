#ifndef VEXLO_MEMINFO_COLUMNS_H
#define VEXLO_MEMINFO_COLUMNS_H

#include <cstdio>
#include <string>

/// The kernel's memory summary as two columns of text with equally many lines; both empty without data.
struct MemInfoColumns
{
	std::string names;  ///< first word of each piece of /proc/meminfo, padded to 11 characters
	std::string values; ///< the number beside it, in kilobytes: "512 KB"
};

/// Reads /proc/meminfo. Without that file both columns are empty.
MemInfoColumns readMemInfo();

/// Reads `stream` (not null, left open) to its end or to a read error.
MemInfoColumns parseMemInfo(FILE *stream);

#endif

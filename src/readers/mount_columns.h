#ifndef VEXLO_MOUNT_COLUMNS_H
#define VEXLO_MOUNT_COLUMNS_H

#include <cstdio>
#include <string>

/// The mounted file systems from `df -h` as two columns of text. Each column has a heading, and one line for each
/// line of the output.
struct MountColumns
{
	std::string filesystem; ///< first word of each line: the device, padded to 35 characters
	std::string usage;      ///< words two to six: size, used, available, per cent, mount point
	int rows;               ///< lines per column, and one to spare: at least 2
};

/// Runs `df -h` by way of /var/tmp/df.tmp, waits, and removes the file. An error gives fewer lines, at least the
/// headings.
MountColumns readMountColumns();

/// Reads `stream` (not null, left open) to its end or to a read error. The first line is a heading; every other line
/// makes a row.
MountColumns parseMountColumns(FILE *stream);

#endif

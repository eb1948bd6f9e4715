#ifndef VEXLO_MOUNT_COLUMNS_H
#define VEXLO_MOUNT_COLUMNS_H

#include <cstdio>
#include <string>

/// What `df -h` says of the mounted file systems, as two columns of text. Each column has a
/// heading and then a line for every line of the command's output.
struct MountColumns
{
	std::string filesystem; ///< first word of each line: the device, padded to 35 characters
	std::string usage;      ///< words two to six: size, used, available, per cent, mount point
	int rows;               ///< lines per column, and one to spare: at least 2
};

/// Runs `df -h` by way of /var/tmp/df.tmp and waits for it; the file is gone afterwards.
/// Whatever goes wrong gives fewer lines, at the least the headings alone.
MountColumns readMountColumns();

/// Reads `stream` (not null, left open) to its end or to a read error, its first line being
/// a heading whatever it holds. Every other line makes a row.
MountColumns parseMountColumns(FILE *stream);

#endif

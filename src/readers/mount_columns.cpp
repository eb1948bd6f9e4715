#include "mount_columns.h"

#include "append.h"
#include "line.h"
#include "shell.h"

namespace
{

// The format of a row is given: its zeros have no effect beside '-'. Older compilers accept the pragma only outside
// of the function.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat"
void addRow(MountColumns &columns, const char *device, const char *size, const char *used,
            const char *available, const char *percent, const char *mountPoint)
{
	appendFormatted(columns.filesystem, "%-35s\n", device);
	appendFormatted(columns.usage, "%-06s  %-06s  %-06s  %-04s %-50s\n", size, used, available, percent,
	                mountPoint);
	++columns.rows;
}
#pragma GCC diagnostic pop

MountColumns headings()
{
	const int spareRow = 1;
	MountColumns columns;
	columns.rows = spareRow;
	addRow(columns, "Filesystem", "Size", "Used", "Avail.", "Use%", "Mounted");
	return columns;
}

} // namespace

MountColumns parseMountColumns(FILE *stream)
{
	MountColumns columns = headings();
	char line[lineSize];
	const char *const heading = fgets(line, lineLimit, stream);
	static_cast<void>(heading);

	while (fgets(line, lineLimit, stream)) {
		// Each word's buffer has room for a whole line.
		char words[6][lineSize];
		for (int i = 0; i < 6; ++i)
			words[i][0] = '\0';
		sscanf(line, "%s %s %s %s %s %s\n", words[0], words[1], words[2], words[3], words[4], words[5]);
		addRow(columns, words[0], words[1], words[2], words[3], words[4], words[5]);
	}
	return columns;
}

MountColumns readMountColumns()
{
	runInShell("df -h >/var/tmp/df.tmp");
	FILE *const stream = fopen("/var/tmp/df.tmp", "r");
	MountColumns columns = stream ? parseMountColumns(stream) : headings();
	if (stream)
		fclose(stream);
	remove("/var/tmp/df.tmp");
	return columns;
}

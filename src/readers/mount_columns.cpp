#include "mount_columns.h"

#include "append.h"
#include "shell.h"

namespace
{

constexpr int lineSize = 1024;
constexpr int lineLimit = 1023;

void addRow(MountColumns &columns, const char *device, const char *size, const char *used,
            const char *available, const char *percent, const char *mountPoint)
{
	appendFormatted(columns.filesystem, "%-35s\n", device);
#pragma GCC diagnostic push
// The format is given as it is; beside the '-' its zeros do nothing.
#pragma GCC diagnostic ignored "-Wformat"
	appendFormatted(columns.usage, "%-06s  %-06s  %-06s  %-04s %-50s\n", size, used, available, percent,
	                mountPoint);
#pragma GCC diagnostic pop
	++columns.rows;
}

MountColumns headings()
{
	constexpr int spareRow = 1;
	MountColumns columns = {{}, {}, spareRow};
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
		// Each as large as a line, so that no word can be too long for its buffer.
		char words[6][lineSize];
		for (char *word : words)
			word[0] = '\0';
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

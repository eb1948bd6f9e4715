#include "meminfo_columns.h"

#include "append.h"

namespace
{

// A piece has up to 29 characters: a quantity's whole line, or a part of the table that older kernels print first,
// which makes eight pieces.
const int pieceLimit = 30;
const int tablePieces = 8;

} // namespace

MemInfoColumns parseMemInfo(FILE *stream)
{
	MemInfoColumns columns;
	// Name and value keep those of the previous piece when a piece has none.
	char name[pieceLimit] = "";
	int value = 0;
	int pieces = 0;

	char piece[pieceLimit];
	while (fgets(piece, pieceLimit, stream)) {
		// A blank piece returns EOF, and counts.
		if (sscanf(piece, "%s %d kB", name, &value) == 0)
			continue;
		if (pieces >= tablePieces) {
			appendFormatted(columns.names, "%-11s\n", name);
			appendFormatted(columns.values, "%d KB\n", value);
		}
		++pieces;
	}
	return columns;
}

MemInfoColumns readMemInfo()
{
	FILE *const stream = fopen("/proc/meminfo", "r");
	MemInfoColumns columns = stream ? parseMemInfo(stream) : MemInfoColumns();
	if (stream)
		fclose(stream);
	return columns;
}

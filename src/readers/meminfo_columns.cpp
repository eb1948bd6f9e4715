#include "meminfo_columns.h"

#include "append.h"

namespace
{

// A piece holds up to 29 characters: a whole line of a quantity, or a part of a line of the
// summary table that older kernels print first. That table makes eight pieces.
const int pieceLimit = 30;
const int tablePieces = 8;

} // namespace

MemInfoColumns parseMemInfo(FILE *stream)
{
	MemInfoColumns columns;
	// Name and value outlive the piece: a piece without them shows those of the piece before.
	char name[pieceLimit] = "";
	int value = 0;
	int pieces = 0;

	char piece[pieceLimit];
	while (fgets(piece, pieceLimit, stream)) {
		// A blank piece gives EOF, and counts.
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

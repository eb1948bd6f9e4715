#include "mtd_columns.h"

#include "append.h"
#include "line.h"

namespace
{

MtdColumns headings()
{
	MtdColumns columns;
	columns.dev = "dev:\n";
	columns.size = "size\n";
	columns.erasesize = "erasesize\n";
	columns.name = "name\n";
	columns.rows = 1;
	return columns;
}

} // namespace

MtdColumns parseMtdColumns(FILE *stream)
{
	MtdColumns columns = headings();
	char line[lineSize];
	const char *const heading = fgets(line, lineLimit, stream);
	static_cast<void>(heading);

	while (fgets(line, lineLimit, stream)) {
		int number = 0;
		unsigned size = 0;
		unsigned erasesize = 0;
		// Each word's buffer has room for a whole line.
		char first[lineSize];
		char second[lineSize];
		char third[lineSize];
		first[0] = second[0] = third[0] = '\0';

		sscanf(line, "mtd%d: %x %x %s %s %s\n", &number, &size, &erasesize, first, second, third);
		appendFormatted(columns.dev, "mtd%d:\n", number);
		appendFormatted(columns.size, "%08x\n", size);
		appendFormatted(columns.erasesize, "%08x\n", erasesize);
		appendFormatted(columns.name, "%s %s %s\n", first, second, third);
		++columns.rows;
	}
	return columns;
}

MtdColumns readMtdColumns()
{
	FILE *const stream = fopen("/proc/mtd", "r");
	MtdColumns columns = stream ? parseMtdColumns(stream) : headings();
	if (stream)
		fclose(stream);
	return columns;
}

#ifndef VEXLO_MTD_COLUMNS_H
#define VEXLO_MTD_COLUMNS_H

#include <cstdio>
#include <string>

/// The kernel's list of flash partitions, one text for each column. Each column has `rows` lines, the first a
/// heading; every line ends with a newline.
struct MtdColumns
{
	std::string dev;       ///< "mtd%d:", the partition's number
	std::string size;      ///< bytes, eight hexadecimal digits
	std::string erasesize; ///< bytes of an erase block, eight hexadecimal digits
	std::string name;      ///< first three words of the name, with the kernel's quotation marks
	int rows;              ///< lines per column, heading included: at least 1
};

/// Reads /proc/mtd. Without that file there are only the headings.
MtdColumns readMtdColumns();

/// Reads `stream` (not null, left open) to its end or to a read error. The first line is a heading; every other line
/// makes a row.
MtdColumns parseMtdColumns(FILE *stream);

#endif

#include "scanlog_contents.h"

#include "append.h"
#include "debug_line.h"
#include "line.h"

#include <cstddef>
#include <cstring>

namespace
{

// A line that marks the start of a scan shows as two pieces, which share the character at 46.
const std::size_t pieceLength = 46;
const std::size_t firstPiece = 1;
const std::size_t secondPiece = 46;

void addEntry(ScanLogContents &contents, int number, const char *shown, std::size_t mostShown,
              const char *line)
{
	contents.entries.push_back(ScanLogEntry());
	ScanLogEntry &entry = contents.entries.back();
	appendNumber(entry.text, number);
	entry.text.append(" ", 1);
	entry.text.append(shown, strnlen(shown, mostShown));
	entry.line = line;
}

ScanLogContents nothing()
{
	ScanLogContents contents;
	contents.found = false;
	return contents;
}

} // namespace

long filesize(FILE *stream)
{
	const long position = ftell(stream);
	fseek(stream, 0, SEEK_END);
	const long size = ftell(stream);
	fseek(stream, position, SEEK_SET);
	return size;
}

ScanLogContents parseScanLog(FILE *stream, const char *path)
{
	ScanLogContents contents;
	contents.found = true;
	// Not cleared between lines: the second piece of a short line shows the rest of a longer one.
	char line[lineSize] = "";
	for (int number = 0; fgets(line, lineLimit, stream); ++number) {
		if (strstr(line, "start at")) {
			addEntry(contents, number, line + firstPiece, pieceLength, line);
			addEntry(contents, number, line + secondPiece, pieceLength, line);
		} else {
			addEntry(contents, number, line, lineSize, line);
		}
	}
	appendFormatted(contents.summary, "size of %s : %ld bytes", path, filesize(stream));
	return contents;
}

ScanLogContents readScanLog(const char *path)
{
	FILE *const stream = fopen(path, "r");
	ScanLogContents contents = stream ? parseScanLog(stream, path) : nothing();
	if (stream) {
		fclose(stream);
		eDebug("close file");
	} else {
		appendFormatted(contents.summary, "file \"%s\" not found", path);
		eDebug("file \"%s\" not found", path);
	}
	return contents;
}

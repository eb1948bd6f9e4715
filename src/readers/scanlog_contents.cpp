#include "scanlog_contents.h"

#include "append.h"
#include "debug_line.h"

#include <cstddef>
#include <cstring>

namespace
{

constexpr int lineSize = 1024;
constexpr int lineLimit = 1023;

// What is shown of a line that marks the start of a scan: two pieces, which share the
// character at 46.
constexpr std::size_t pieceLength = 46;
constexpr std::size_t firstPiece = 1;
constexpr std::size_t secondPiece = 46;

/// Shows `length` characters from `text` on, of the line that is `lineLength` long.
void addEntry(ScanLogContents &contents, int number, const char *text, std::size_t length, const char *line,
              std::size_t lineLength)
{
	ScanLogEntry &entry = contents.entries.append();
	appendNumber(entry.text, number);
	entry.text.append(" ", 1);
	entry.text.append(text, length);
	entry.line.assign(line, lineLength);
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
	ScanLogContents contents = {{}, {}, true};
	// Cleared once only: the second piece of a short line shows what longer ones left behind.
	char line[lineSize] = "";

	for (int number = 0; fgets(line, lineLimit, stream); ++number) {
		const std::size_t length = strlen(line);
		if (!strstr(line, "start at")) {
			addEntry(contents, number, line, length, line, length);
			continue;
		}
		for (const std::size_t start : {firstPiece, secondPiece}) {
			const char *const piece = line + start;
			addEntry(contents, number, piece, strnlen(piece, pieceLength), line, length);
		}
	}
	appendFormatted(contents.summary, "size of %s : %ld bytes", path, filesize(stream));
	return contents;
}

ScanLogContents readScanLog(const char *path)
{
	FILE *const stream = fopen(path, "r");
	ScanLogContents contents = stream ? parseScanLog(stream, path) : ScanLogContents{{}, {}, false};
	if (stream) {
		fclose(stream);
		eDebug("close file");
	} else {
		appendFormatted(contents.summary, "file \"%s\" not found", path);
		eDebug("file \"%s\" not found", path);
	}
	return contents;
}

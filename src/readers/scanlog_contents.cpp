#include "scanlog_contents.h"

#include "column_text.h"
#include "edebug.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr int lineSize = 1024;
constexpr int lineLimit = 1023;

// What is shown of a line that marks the start of a scan: two pieces, which share the
// character at 46.
constexpr std::size_t pieceLength = 46;
constexpr std::size_t firstPiece = 1;
constexpr std::size_t secondPiece = 46;

// Both strings are made to size: a log may have a million lines.
void addEntry(ScanLogContents &contents, int number, const char *text, const char *line)
{
	char numbered[lineSize + 16];
	const int length = snprintf(numbered, sizeof numbered, "%d %s", number, text);
	contents.entries.push_back({std::string(numbered, static_cast<std::size_t>(length)), line});
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
	ScanLogContents contents = {{}, "", true};
	// Cleared once only: the second piece of a short line shows what longer ones left behind.
	char line[lineSize] = "";
	char piece[lineSize] = "";

	for (int number = 0; fgets(line, lineLimit, stream); ++number) {
		if (!strstr(line, "start at")) {
			addEntry(contents, number, line, line);
			continue;
		}
		for (const std::size_t start : {firstPiece, secondPiece}) {
			strncat(piece, line + start, pieceLength);
			addEntry(contents, number, piece, line);
			piece[0] = '\0';
		}
	}
	appendFormatted(contents.summary, "size of %s : %ld bytes", path, filesize(stream));
	return contents;
}

ScanLogContents readScanLog(const char *path)
{
	FILE *const stream = fopen(path, "r");
	if (!stream) {
		ScanLogContents contents = {{}, "", false};
		appendFormatted(contents.summary, "file \"%s\" not found", path);
		eDebug("file \"%s\" not found", path);
		return contents;
	}

	ScanLogContents contents = parseScanLog(stream, path);
	fclose(stream);
	eDebug("close file");
	return contents;
}

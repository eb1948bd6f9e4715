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
	std::string text; // of one row after another

	for (int number = 0; fgets(line, lineLimit, stream); ++number) {
		const std::size_t length = strlen(line);
		const auto addEntry = [&](const char *shown, std::size_t shownLength) {
			text.clear();
			appendNumber(text, number);
			text.append(" ", 1);
			text.append(shown, shownLength);
			contents.entries.append(text.data(), text.size(), line, length);
		};
		if (!strstr(line, "start at")) {
			addEntry(line, length);
			continue;
		}
		for (const std::size_t start : {firstPiece, secondPiece}) {
			const char *const piece = line + start;
			addEntry(piece, strnlen(piece, pieceLength));
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

#include "scanlog_contents.h"

#include "column_text.h"
#include "edebug.h"

#include <cstddef>
#include <cstring>
#include <string_view>

namespace
{

constexpr int lineSize = 1024;
constexpr int lineLimit = 1023;

// What is shown of a line that marks the start of a scan: two pieces, which share the
// character at 46.
constexpr std::size_t pieceLength = 46;
constexpr std::size_t firstPiece = 1;
constexpr std::size_t secondPiece = 46;

void addEntry(ScanLogContents &contents, int number, std::string_view text, std::string_view line)
{
	ScanLogEntry &entry = contents.entries.emplace_back();
	appendNumber(entry.text, number);
	entry.text.append(" ", 1);
	entry.text += text;
	entry.line = line;
}

ScanLogContents notFound(const char *path)
{
	ScanLogContents contents = {{}, {}, false};
	appendFormatted(contents.summary, "file \"%s\" not found", path);
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
	ScanLogContents contents = {{}, {}, true};
	// Cleared once only: the second piece of a short line shows what longer ones left behind.
	char line[lineSize] = "";

	for (int number = 0; fgets(line, lineLimit, stream); ++number) {
		const std::string_view whole = line;
		if (!strstr(line, "start at")) {
			addEntry(contents, number, whole, whole);
			continue;
		}
		for (const std::size_t start : {firstPiece, secondPiece})
			addEntry(contents, number, {line + start, strnlen(line + start, pieceLength)}, whole);
	}
	appendFormatted(contents.summary, "size of %s : %ld bytes", path, filesize(stream));
	return contents;
}

ScanLogContents readScanLog(const char *path)
{
	FILE *const stream = fopen(path, "r");
	ScanLogContents contents = stream ? parseScanLog(stream, path) : notFound(path);
	if (stream) {
		fclose(stream);
		eDebug("close file");
	} else {
		eDebug("%s", contents.summary.c_str());
	}
	return contents;
}

#include "plain_loops.h"

#include <clocale>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <libintl.h>

namespace
{

constexpr int lineLimit = 1023;

__attribute__((format(printf, 2, 3))) void add(PlainText *text, const char *format, ...)
{
	for (;;) {
		const size_t room = text->capacity - text->length;
		va_list values;
		va_start(values, format);
		const int length = vsnprintf(text->bytes + text->length, room, format, values);
		va_end(values);
		const size_t wanted = static_cast<size_t>(length);
		if (wanted < room) {
			text->length += wanted;
			return;
		}
		text->capacity = 2 * text->capacity + wanted + 1;
		text->bytes = static_cast<char *>(realloc(text->bytes, text->capacity));
	}
}

PlainRow *newRow(PlainRows *list)
{
	if (list->count == list->capacity) {
		list->capacity = list->capacity ? 2 * list->capacity : 16;
		list->rows = static_cast<PlainRow *>(realloc(list->rows, list->capacity * sizeof *list->rows));
	}
	return &list->rows[list->count++];
}

char *copy(const char *text, size_t length)
{
	char *const bytes = static_cast<char *>(malloc(length + 1));
	memcpy(bytes, text, length);
	bytes[length] = '\0';
	return bytes;
}

} // namespace

void plainMemInfo(FILE *stream, PlainText columns[2])
{
	char piece[30], name[30] = "";
	int value = 0, pieces = 0;
	while (fgets(piece, sizeof piece, stream)) {
		if (sscanf(piece, "%s %d kB", name, &value) == 0)
			continue;
		if (pieces++ >= 8) {
			add(&columns[0], "%-11s\n", name);
			add(&columns[1], "%d KB\n", value);
		}
	}
}

void plainMtd(FILE *stream, PlainText columns[4])
{
	char line[1024];
	add(&columns[0], "dev:\n");
	add(&columns[1], "size\n");
	add(&columns[2], "erasesize\n");
	add(&columns[3], "name\n");
	if (!fgets(line, lineLimit, stream))
		return;
	while (fgets(line, lineLimit, stream)) {
		int number = 0;
		unsigned size = 0, erasesize = 0;
		char first[1024], second[1024], third[1024];
		first[0] = second[0] = third[0] = '\0';
		sscanf(line, "mtd%d: %x %x %s %s %s\n", &number, &size, &erasesize, first, second, third);
		add(&columns[0], "mtd%d:\n", number);
		add(&columns[1], "%08x\n", size);
		add(&columns[2], "%08x\n", erasesize);
		add(&columns[3], "%s %s %s\n", first, second, third);
	}
}

void plainMounts(FILE *stream, PlainText columns[2])
{
	char line[1024];
	add(&columns[0], "%-35s\n", "Filesystem");
	add(&columns[1], "%-6s  %-6s  %-6s  %-4s %-50s\n", "Size", "Used", "Avail.", "Use%", "Mounted");
	if (!fgets(line, lineLimit, stream))
		return;
	while (fgets(line, lineLimit, stream)) {
		char words[6][1024];
		for (int i = 0; i < 6; ++i)
			words[i][0] = '\0';
		sscanf(line, "%s %s %s %s %s %s\n", words[0], words[1], words[2], words[3], words[4], words[5]);
		add(&columns[0], "%-35s\n", words[0]);
		add(&columns[1], "%-6s  %-6s  %-6s  %-4s %-50s\n", words[1], words[2], words[3], words[4], words[5]);
	}
}

void plainProcesses(FILE *stream, PlainRows *list)
{
	char line[1024];
	int pid = 0;
	if (fgets(line, lineLimit, stream)) {
		sscanf(line, "%d %*s", &pid);
		add(&list->header, "%s", line);
	}
	while (fgets(line, lineLimit, stream)) {
		sscanf(line, "%d %*s", &pid);
		PlainRow *const row = newRow(list);
		row->text = strdup(dcgettext(nullptr, line, LC_MESSAGES));
		row->line = nullptr;
		snprintf(row->pid, sizeof row->pid, "%d", pid);
	}
}

void plainScanLog(FILE *stream, PlainRows *list)
{
	char line[1024] = "", piece[1024] = "", text[1040];
	for (int number = 0; fgets(line, lineLimit, stream); ++number) {
		const bool marker = strstr(line, "start at") != nullptr;
		for (int part = 0; part < (marker ? 2 : 1); ++part) {
			const char *shown = line;
			if (marker) {
				strncat(piece, line + (part ? 46 : 1), 46);
				shown = piece;
			}
			const int length = snprintf(text, sizeof text, "%d %s", number, shown);
			PlainRow *const row = newRow(list);
			row->text = copy(text, static_cast<size_t>(length));
			row->line = strdup(line);
			piece[0] = '\0';
		}
	}
	const long position = ftell(stream);
	fseek(stream, 0, SEEK_END);
	add(&list->header, "size of %s : %ld bytes", "log", ftell(stream));
	fseek(stream, position, SEEK_SET);
}

void release(PlainText *columns, int count)
{
	for (int i = 0; i < count; ++i)
		free(columns[i].bytes);
}

void release(PlainRows *list)
{
	for (size_t i = 0; i < list->count; ++i) {
		free(list->rows[i].text);
		free(list->rows[i].line);
	}
	free(list->rows);
	free(list->header.bytes);
}

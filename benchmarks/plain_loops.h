#ifndef BENCH_PLAIN_LOOPS_H
#define BENCH_PLAIN_LOOPS_H

#include <cstddef>
#include <cstdio>

// The readers' baseline: minimal C loops over the same libc calls with the same result.

struct PlainText
{
	char *bytes; ///< NUL-terminated, from malloc; null while empty
	size_t length, capacity;
};

struct PlainRow
{
	char *text;   ///< from malloc
	char *line;   ///< of the scan log, from malloc
	char pid[12]; ///< of the process list
};

struct PlainRows
{
	PlainRow *rows; ///< from malloc
	size_t count, capacity;
	PlainText header;
};

void plainMemInfo(FILE *stream, PlainText columns[2]);
void plainMtd(FILE *stream, PlainText columns[4]);
void plainMounts(FILE *stream, PlainText columns[2]);
void plainProcesses(FILE *stream, PlainRows *list);
void plainScanLog(FILE *stream, PlainRows *list);

void release(PlainText *columns, int count);
void release(PlainRows *list);

#endif

#ifndef BENCH_PLAIN_LOOPS_H
#define BENCH_PLAIN_LOOPS_H

#include <cstddef>
#include <cstdio>

// What the readers read, in the barest loops over the same libc calls that give the same result:
// the baseline that the readers are held against. C in all but name.

struct PlainText
{
	char *bytes; ///< with a NUL at the end; null while empty; from malloc
	size_t length, capacity;
};

struct PlainRow
{
	char *text;   ///< from malloc
	char *line;   ///< the scan log's: from malloc
	char pid[12]; ///< the process list's
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

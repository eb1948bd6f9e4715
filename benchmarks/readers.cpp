#include "readers.h"

#include "meminfo_columns.h"
#include "mount_columns.h"
#include "mtd_columns.h"
#include "plain_loops.h"
#include "ps_snapshot.h"
#include "scanlog_contents.h"

#include <cstdlib>

// The host defines it; silent here.
void eDebug(const char *, ...) {}

namespace bench
{

namespace
{

bool equal(const std::string &text, const PlainText &plain)
{
	return text == std::string(plain.bytes ? plain.bytes : "", plain.length);
}

std::string memInfoFile(int lines)
{
	std::string text = "        total:    used:    free:  shared: buffers:  cached:\n"
					   "Mem:  64561152 60784640  3776512        0  1331200 31232000\n"
					   "Swap:        0        0        0\n";
	static const char *const names[] = {"MemTotal", "MemFree", "Buffers", "Cached", "SwapCached", "Active"};
	for (int i = 0; i < lines; ++i) {
		char line[64];
		std::snprintf(line, sizeof line, "%s:%*d kB\n", names[i % 6], 15, i * 37 % 99999);
		text += line;
	}
	return text;
}

std::string mtdFile(int lines)
{
	std::string text = "dev:    size   erasesize  name\n";
	for (int i = 0; i < lines; ++i) {
		char line[96];
		std::snprintf(line, sizeof line, "mtd%d: %08x %08x \"root file system\"\n", i, 0x20000 * i, 0x20000);
		text += line;
	}
	return text;
}

std::string mountsFile(int lines)
{
	std::string text = "Filesystem                Size      Used Available Use% Mounted on\n";
	for (int i = 0; i < lines; ++i) {
		char line[128];
		std::snprintf(line, sizeof line, "/dev/mtdblock%-12d %4d.%dM    %3d.5M     3.2M  %2d%% /mnt/part%d\n",
		              i, i % 1000, i % 10, i % 900, i % 100, i);
		text += line;
	}
	return text;
}

std::string processesFile(int lines)
{
	std::string text = "  PID  Uid     VmSize Stat Command\n";
	for (int i = 0; i < lines; ++i) {
		char line[96];
		std::snprintf(line, sizeof line, "%5d root        %4d S   /bin/service --number %d\n", i + 1,
		              i % 9999, i);
		text += line;
	}
	return text;
}

std::string scanLogFile(int lines)
{
	std::string text;
	for (int i = 0; i < lines; ++i) {
		char line[128];
		if (i % 100 == 0)
			std::snprintf(line, sizeof line,
			              "*** scan of the satellite at 19.2 degrees east start at 14:%02d:%02d, the %dth\n",
			              i / 100 % 60, i % 60, i);
		else
			std::snprintf(
				line, sizeof line,
				"transponder %05d: %d kHz, horizontal, 27500 ksym/s, 3/4, locked after %d ms, %d services\n",
				i, 10700000 + i, i % 700, i % 13);
		text += line;
	}
	return text;
}

} // namespace

std::vector<Pair> pairs()
{
	std::vector<Pair> all;
	all.push_back({"memory summary", memInfoFile(50), 53,
	               [](FILE *stream) { static_cast<void>(parseMemInfo(stream)); },
	               [](FILE *stream) {
					   PlainText columns[2] = {};
					   plainMemInfo(stream, columns);
					   release(columns, 2);
				   },
	               [](FILE *stream) {
					   const MemInfoColumns ours = parseMemInfo(stream);
					   std::rewind(stream);
					   PlainText columns[2] = {};
					   plainMemInfo(stream, columns);
					   const bool same = equal(ours.names, columns[0]) && equal(ours.values, columns[1]);
					   release(columns, 2);
					   return same;
				   }});
	all.push_back({"flash partitions", mtdFile(50), 51,
	               [](FILE *stream) { static_cast<void>(parseMtdColumns(stream)); },
	               [](FILE *stream) {
					   PlainText columns[4] = {};
					   plainMtd(stream, columns);
					   release(columns, 4);
				   },
	               [](FILE *stream) {
					   const MtdColumns ours = parseMtdColumns(stream);
					   std::rewind(stream);
					   PlainText columns[4] = {};
					   plainMtd(stream, columns);
					   const bool same = equal(ours.dev, columns[0]) && equal(ours.size, columns[1]) &&
		                                 equal(ours.erasesize, columns[2]) && equal(ours.name, columns[3]);
					   release(columns, 4);
					   return same;
				   }});
	all.push_back({"mounts", mountsFile(50), 51,
	               [](FILE *stream) { static_cast<void>(parseMountColumns(stream)); },
	               [](FILE *stream) {
					   PlainText columns[2] = {};
					   plainMounts(stream, columns);
					   release(columns, 2);
				   },
	               [](FILE *stream) {
					   const MountColumns ours = parseMountColumns(stream);
					   std::rewind(stream);
					   PlainText columns[2] = {};
					   plainMounts(stream, columns);
					   const bool same = equal(ours.filesystem, columns[0]) && equal(ours.usage, columns[1]);
					   release(columns, 2);
					   return same;
				   }});
	all.push_back({"processes", processesFile(300), 301,
	               [](FILE *stream) { static_cast<void>(parsePsSnapshot(stream)); },
	               [](FILE *stream) {
					   PlainRows list = {};
					   plainProcesses(stream, &list);
					   release(&list);
				   },
	               [](FILE *stream) {
					   const PsSnapshot ours = parsePsSnapshot(stream);
					   std::rewind(stream);
					   PlainRows list = {};
					   plainProcesses(stream, &list);
					   bool same = equal(ours.header, list.header) && ours.rows.size() == list.count;
					   const PlainRow *row = list.rows;
					   for (const PsEntry &entry : ours.rows) {
						   same = same && entry.text == row->text && entry.pid == row->pid;
						   ++row;
					   }
					   release(&list);
					   return same;
				   }});
	all.push_back({"scan log", scanLogFile(10000), 10000,
	               [](FILE *stream) { static_cast<void>(parseScanLog(stream, "log")); },
	               [](FILE *stream) {
					   PlainRows list = {};
					   plainScanLog(stream, &list);
					   release(&list);
				   },
	               [](FILE *stream) {
					   const ScanLogContents ours = parseScanLog(stream, "log");
					   std::rewind(stream);
					   PlainRows list = {};
					   plainScanLog(stream, &list);
					   bool same = equal(ours.summary, list.header) && ours.entries.size() == list.count;
					   const PlainRow *row = list.rows;
					   for (const ScanLogEntry &entry : ours.entries) {
						   same = same && entry.text == row->text && entry.line == row->line;
						   ++row;
					   }
					   release(&list);
					   return same;
				   }});
	return all;
}

FILE *streamOf(const std::string &content)
{
	FILE *stream = std::tmpfile();
	if (!stream || std::fwrite(content.data(), 1, content.size(), stream) != content.size()) {
		std::fprintf(stderr, "cannot write a temporary file\n");
		std::exit(2);
	}
	std::rewind(stream);
	return stream;
}

} // namespace bench

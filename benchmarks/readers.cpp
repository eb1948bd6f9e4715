#include "readers.h"

#include "models.h"

#include <cstdlib>

// The host defines it; silent here.
void eDebug(const char *, ...) {}

namespace bench
{

namespace
{

template <class Read, class Model>
Pair pairOf(const char *name, int lines, const std::string &input, double limit, Read read, Model model)
{
	Pair pair;
	pair.name = name;
	pair.input = input;
	pair.lines = lines;
	pair.limit = limit;
	pair.read = [read](FILE *stream) { static_cast<void>(read(stream)); };
	pair.readByModel = [model](const std::string &bytes) { static_cast<void>(model(bytes)); };
	pair.same = [read, model](FILE *stream, const std::string &bytes) {
		return textOf(read(stream)) == textOf(model(bytes));
	};
	return pair;
}

using Line = char[128];

/// A file of `heading` and `lines` lines.
std::string fileOf(const char *heading, int lines, void (*write)(Line &line, int number))
{
	std::string text = heading;
	for (int i = 0; i < lines; ++i) {
		Line line;
		write(line, i);
		text += line;
	}
	return text;
}

void writeMemInfo(Line &line, int i)
{
	static const char *const names[] = {"MemTotal", "MemFree", "Buffers", "Cached", "SwapCached", "Active"};
	std::snprintf(line, sizeof line, "%s:%*d kB\n", names[i % 6], 15, i * 37 % 99999);
}

void writeMtd(Line &line, int i)
{
	std::snprintf(line, sizeof line, "mtd%d: %08x %08x \"root file system\"\n", i, 0x20000 * i, 0x20000);
}

void writeMount(Line &line, int i)
{
	std::snprintf(line, sizeof line, "/dev/mtdblock%-12d %4d.%dM    %3d.5M     3.2M  %2d%% /mnt/part%d\n", i,
	              i % 1000, i % 10, i % 900, i % 100, i);
}

void writeProcess(Line &line, int i)
{
	std::snprintf(line, sizeof line, "%5d root        %4d S   /bin/service --number %d\n", i + 1, i % 9999,
	              i);
}

void writeScanLog(Line &line, int i)
{
	if (i % 100 == 0)
		std::snprintf(line, sizeof line,
		              "*** scan of the satellite at 19.2 degrees east start at 14:%02d:%02d, the %dth\n",
		              i / 100 % 60, i % 60, i);
	else
		std::snprintf(
			line, sizeof line,
			"transponder %05d: %d kHz, horizontal, 27500 ksym/s, 3/4, locked after %d ms, %d services\n", i,
			10700000 + i, i % 700, i % 13);
}

} // namespace

std::vector<Pair> pairs()
{
	const auto readLog = [](FILE *stream) { return parseScanLog(stream, "log"); };
	const auto modelLog = [](const std::string &bytes) { return modelScanLog(bytes, "log"); };
	return {
		pairOf("memory summary", 53,
	           fileOf("        total:    used:    free:  shared: buffers:  cached:\n"
	                  "Mem:  64561152 60784640  3776512        0  1331200 31232000\n"
	                  "Swap:        0        0        0\n",
	                  50, writeMemInfo),
	           2.5, parseMemInfo, modelMemInfo),
		pairOf("flash partitions", 51, fileOf("dev:    size   erasesize  name\n", 50, writeMtd), 2.6,
	           parseMtdColumns, modelMtd),
		pairOf("mounts", 51,
	           fileOf("Filesystem                Size      Used Available Use% Mounted on\n", 50, writeMount),
	           1.5, parseMountColumns, modelMounts),
		pairOf("processes", 301, fileOf("  PID  Uid     VmSize Stat Command\n", 300, writeProcess), 1.5,
	           parsePsSnapshot, modelPs),
		pairOf("scan log", 10000, fileOf("", 10000, writeScanLog), 0.7, readLog, modelLog)};
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

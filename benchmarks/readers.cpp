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
	const auto readLog = [](FILE *stream) { return parseScanLog(stream, "log"); };
	const auto modelLog = [](const std::string &bytes) { return modelScanLog(bytes, "log"); };
	return {pairOf("memory summary", 53, memInfoFile(50), 2.5, parseMemInfo, modelMemInfo),
	        pairOf("flash partitions", 51, mtdFile(50), 2.6, parseMtdColumns, modelMtd),
	        pairOf("mounts", 51, mountsFile(50), 1.5, parseMountColumns, modelMounts),
	        pairOf("processes", 301, processesFile(300), 1.5, parsePsSnapshot, modelPs),
	        pairOf("scan log", 10000, scanLogFile(10000), 0.7, readLog, modelLog)};
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

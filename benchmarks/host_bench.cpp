// The plugin's costs inside a host: opening screens, loading, large logs, key presses.
//
//   host_bench table       measures and prints lines of the table
//   host_bench open ENTRY  opens the screen of a menu entry many times, for other profilers
//   host_bench count ...   runs one operation under callgrind: load, empty, key LINES, text CHARACTERS

#include "desk.h"
#include "desk_error.h"
#include "elistbox.h"
#include "key.h"
#include "peer.h"
#include "pixel_canvas.h"
#include "plugin.h"
#include "skin.h"
#include "table.h"
#include "timed_commands.h"

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <regex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace
{

namespace fs = std::filesystem;

using bench::median;
using bench::row;
using bench::text;
using desk::Key;

/// Called whenever the host waits for a key, with the number of keys pressed so far. Returns the next key; nullopt:
/// exit.
using Watcher = std::function<std::optional<Key>(int pressed)>;

struct Setting
{
	std::string skin; ///< a skin file
	std::string log;  ///< the scan log; empty: this computer's
	bool paints = false;
};

[[noreturn]] void fail(const std::string &message)
{
	std::fprintf(stderr, "host_bench: %s\n", message.c_str());
	std::exit(2);
}

/// The viewer's half in this process. It encodes and decodes each message as between two processes, and paints.
class WatchedViewer : public desk::Peer
{
public:
	WatchedViewer(const Watcher &w, bool p) : watcher(w), paints(p) {}

	void send(const desk::ToViewer &message) override
	{
		std::optional<desk::ToViewer> came = desk::decodeToViewer(desk::encode(message));
		desk::Frame *frame = came ? std::get_if<desk::Frame>(&*came) : nullptr;
		if (!paints || !frame)
			return;
		if (const auto changes = picture.apply(std::move(frame->edit)); changes && !changes->empty())
			picture.drawChanges(pixels);
	}

	std::optional<desk::ToHost> receive() override
	{
		const desk::Press press = {watcher(pressed++).value_or(Key::exit), false};
		return desk::decodeToHost(desk::encode(press));
	}

private:
	const Watcher &watcher;
	const bool paints;
	int pressed = 0;
	desk::DisplayList picture;
	desk::PixelCanvas pixels;
};

std::unique_ptr<WatchedViewer> viewer;
std::string scanLog;

double statusLine(const char *name)
{
	std::ifstream status("/proc/self/status");
	for (std::string line; std::getline(status, line);)
		if (line.rfind(name, 0) == 0)
			return 1024 * std::strtod(line.c_str() + std::strlen(name), nullptr);
	fail(std::string("no ") + name + " in /proc/self/status");
}

/// Configures the next runs. `watcher` must outlive them. Throws a desk::Error on failure.
void prepare(const Setting &setting, const Watcher &watcher)
{
	desk::Desk &desk = desk::Desk::get();
	desk.setSkin(desk::Skin::parse(desk::Skin::read(setting.skin), setting.skin));
	scanLog = setting.log;
	viewer = std::make_unique<WatchedViewer>(watcher, setting.paints);
	desk.setViewer(viewer.get(), setting.paints);
}

/// Loads the plugin, runs it once and unloads it. Throws a desk::Error on failure.
void run()
{
	desk::Desk &desk = desk::Desk::get();
	const std::unique_ptr<desk::Plugin> plugin = desk::Plugin::load(BENCH_PLUGIN);
	void *const handle = dlopen(BENCH_PLUGIN, RTLD_NOW | RTLD_NOLOAD);
	if (!scanLog.empty())
		*static_cast<const char **>(dlsym(handle, "ff_scan")) = scanLog.c_str();
	dlclose(handle);
	desk.beginRun();
	plugin->exec();
	desk.endRun();
}

/// Seconds of a monotonic clock.
double now()
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// CPU seconds of this process.
double processorTime()
{
	timespec time;
	clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
	return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// Bytes of this process: now, and the maximum since forgetPeak().
double memory()
{
	return statusLine("VmRSS:");
}

double peakMemory()
{
	return statusLine("VmHWM:");
}

void forgetPeak()
{
	std::ofstream("/proc/self/clear_refs") << "5";
}

/// Runs `work` in a forked process and returns its result. Ends the program when that process fails.
std::vector<double> apart(const std::function<std::vector<double>()> &work)
{
	int ends[2];
	if (pipe(ends) != 0)
		fail("no pipe");
	std::fflush(nullptr);
	const pid_t child = fork();
	if (child < 0)
		fail("no process");
	if (child == 0) {
		close(ends[0]);
		const std::vector<double> values = work();
		const size_t size = values.size() * sizeof(double);
		_exit(write(ends[1], values.data(), size) == static_cast<ssize_t>(size) ? 0 : 2);
	}
	close(ends[1]);
	std::vector<double> values;
	double value;
	while (read(ends[0], &value, sizeof value) == sizeof value)
		values.push_back(value);
	close(ends[0]);
	int status = 0;
	waitpid(child, &status, 0);
	if (status != 0)
		fail("a measurement ended with status " + std::to_string(status));
	return values;
}

/// A temporary folder, deleted when the program ends.
std::string temporaryFolder()
{
	static const struct Folder
	{
		Folder() : owner(getpid())
		{
			char name[] = "/tmp/vexlo-bench-XXXXXX";
			if (!mkdtemp(name))
				fail("cannot make a folder in /tmp");
			path = name;
		}
		~Folder()
		{
			std::error_code failed;
			if (getpid() == owner)
				fs::remove_all(path, failed);
		}
		pid_t owner;
		std::string path;
	} folder;
	return folder.path;
}

/// A scan log of `lines` lines of 100 bytes each, or of empty lines; made once.
std::string logOf(int lines, bool empty = false)
{
	const std::string path = temporaryFolder() + "/" + std::to_string(lines) + (empty ? ".empty" : ".log");
	if (fs::exists(path))
		return path;
	FILE *file = std::fopen(path.c_str(), "w");
	if (!file)
		fail("cannot write a scan log");
	for (int i = 0; i < lines; ++i) {
		char line[128] = "";
		int length = 0;
		if (!empty) {
			length = std::snprintf(line, sizeof line, "%s %08d: %d kHz, %c, 27500 ksym/s, locked after %d ms",
			                       i % 1000 ? "transponder" : "*** scan of a satellite, start at 14:10", i,
			                       10700000 + i % 2000000, "HV"[i % 2], i % 700);
			while (length < 99)
				line[length++] = '.';
		}
		line[length++] = '\n';
		std::fwrite(line, 1, static_cast<size_t>(length), file);
	}
	if (std::fclose(file) != 0)
		fail("cannot write a scan log");
	return path;
}

constexpr int turns = 101; // of each measurement; the median counts

const Setting plain = {BENCH_SKIN, "", false};

/// The key that opens the menu's entry `number`.
Key entryKey(int number)
{
	return static_cast<Key>(static_cast<int>(Key::digit0) + number);
}

/// Measurements of one opening. Times are in seconds: wall clock, of it in commands, CPU. Memory is in bytes: before,
/// when the screen is complete, and the peak.
struct Opening
{
	double seconds, commands, processor, before, finished, peak;
};

/// Opens the screen of a menu entry `times` times from one menu, calling `between` before each.
std::vector<Opening> openScreen(
	int entry, const Setting &setting, int times = 1, const std::function<void()> &between = [] {})
{
	std::vector<Opening> openings;
	double start = 0, startOfProcessor = 0;
	const Watcher watcher = [&](int pressed) -> std::optional<Key> {
		const double time = now(), processor = processorTime();
		if (pressed % 2) {
			Opening &opening = openings.back();
			opening.seconds = time - start;
			opening.commands = takeCommandSeconds();
			opening.processor = processor - startOfProcessor;
			opening.finished = memory();
			opening.peak = peakMemory();
			return Key::exit;
		}
		if (pressed == 2 * times)
			return std::nullopt;
		between();
		openings.push_back({});
		openings.back().before = memory();
		forgetPeak();
		takeCommandSeconds();
		startOfProcessor = processorTime();
		start = now();
		return entryKey(entry);
	};
	prepare(setting, watcher);
	run();
	return openings;
}

double timeOf(const std::function<void()> &work)
{
	const double start = now();
	work();
	return now() - start;
}

void runOrEnd(const std::string &command)
{
	if (std::system(command.c_str()) != 0)
		fail("failed: " + command);
}

void readBarely(const char *path)
{
	FILE *stream = std::fopen(path, "r");
	if (!stream)
		return;
	char line[1024];
	while (std::fgets(line, sizeof line, stream)) {
	}
	std::fclose(stream);
}

void measureCommands()
{
	const struct
	{
		const char *name, *command, *file;
		int entry;
	} screens[] = {{"processes", "ps >/var/tmp/ps.tmp", "/var/tmp/ps.tmp", 1},
	               {"system info", "df -h >/var/tmp/df.tmp", "/var/tmp/df.tmp", 4}};
	for (const auto &screen : screens) {
		std::vector<double> added, commands, bare;
		const std::vector<Opening> openings = openScreen(screen.entry, plain, turns, [&] {
			bare.push_back(timeOf([&] { runOrEnd(screen.command); }));
			std::remove(screen.file);
		});
		for (const Opening &opening : openings) {
			added.push_back(opening.seconds - opening.commands);
			commands.push_back(opening.commands);
		}
		const double ratio = median(added) / median(commands);
		row(std::string("open ") + screen.name + ": beyond its command", text(1e3 * median(added), 3, " ms"),
		    text(1e3 * median(commands), 2, " ms"), text(100 * ratio, 1, " %"), "<= 8 %", ratio <= 0.08);
		row(std::string("open ") + screen.name + ": all, to the bare command",
		    text(1e3 * (median(added) + median(commands)), 2, " ms"), text(1e3 * median(bare), 2, " ms"),
		    text((median(added) + median(commands)) / median(bare), 2), "", true);
	}
}

void measureFiles()
{
	const struct
	{
		const char *name;
		std::string path;
		int entry;
		Setting setting;
	} screens[] = {{"memory", "/proc/meminfo", 2, plain},
	               {"scan log", BENCH_LOG, 3, {BENCH_SKIN, BENCH_LOG, false}}};
	for (const auto &screen : screens) {
		std::vector<double> ours, bare;
		const std::vector<Opening> openings = openScreen(screen.entry, screen.setting, turns, [&] {
			bare.push_back(timeOf([&] { readBarely(screen.path.c_str()); }));
		});
		for (const Opening &opening : openings)
			ours.push_back(opening.seconds);
		row(std::string("open ") + screen.name + ", to reading its file", text(1e3 * median(ours), 3, " ms"),
		    text(1e3 * median(bare), 3, " ms"), text(median(ours) / median(bare), 2), "", true);
	}
}

/// The scan log's screen by size of the log. The sizes take turns: the largest has emptied the caches before each
/// opening, as other work has before a viewer's opening.
void measureLogs()
{
	constexpr int most = 1000000;
	const std::vector<int> sizes = {10000, 100000, most};
	std::map<int, std::vector<double>> times;
	std::vector<double> cats;
	double before = 0, finished = 0, peak = 0;
	for (const int lines : sizes)
		logOf(lines);
	for (int turn = 0; turn < 25; ++turn) {
		for (const int lines : sizes) {
			const Setting setting = {BENCH_SKIN, logOf(lines), false};
			const std::vector<double> values = apart([&] {
				const Opening screen = openScreen(3, setting)[0];
				return std::vector<double>{screen.processor, screen.before, screen.finished, screen.peak};
			});
			times[lines].push_back(values[0] / lines);
			before = values[1];
			finished = values[2] - before;
			peak = values[3] - before;
		}
		const std::string cat = "exec cat '" + logOf(most) + "' >/dev/null";
		cats.push_back(timeOf([&] { runOrEnd(cat); }) / most);
	}
	double least = HUGE_VAL, greatest = 0;
	for (const int lines : sizes) {
		const double time = median(times[lines]), cat = median(cats);
		least = std::min(least, time);
		greatest = std::max(greatest, time);
		row("scan log of " + std::to_string(lines) + ", a line: screen to cat", text(1e9 * time, 0, " ns"),
		    text(1e9 * cat, 0, " ns"), text(time / cat, 0), "", true);
	}
	row("scan log, a line: slowest size to fastest", text(1e9 * greatest, 0, " ns"),
	    text(1e9 * least, 0, " ns"), text(greatest / least, 2), "<= 1.1", greatest / least <= 1.1);
	row("scan log of 1000000, a line: peak to finished memory", text(peak / most, 0, " bytes"),
	    text(finished / most, 0, " bytes"), text(peak / finished, 2), "<= 1.6", peak / finished <= 1.6);
}

/// The minimum that contract and screen require of each row: an entry, its text, and the line as its key.
void makeBareEntries(const char *path)
{
	std::deque<eListBoxEntryText *> entries;
	FILE *stream = std::fopen(path, "r");
	if (!stream)
		return;
	char line[1024], text[1040];
	const auto add = [&](int number, const char *shown, int most) {
		std::snprintf(text, sizeof text, "%d %.*s", number, most, shown);
		entries.push_back(new eListBoxEntryText(nullptr, text, new eString(line)));
	};
	for (int number = 0; std::fgets(line, 1023, stream); ++number) {
		if (std::strstr(line, "start at")) {
			add(number, line + 1, 46);
			add(number, line + 46, 46);
		} else
			add(number, line, 1023);
	}
	std::fclose(stream);
	for (eListBoxEntryText *entry : entries) {
		delete static_cast<eString *>(entry->getKey());
		delete entry;
	}
}

/// A run with a large log, compared with making its bare entries.
void measureLargeLogs()
{
	const struct
	{
		const char *name;
		std::string path;
	} logs[] = {{"scan log of 1000000 lines", logOf(1000000)},
	            {"scan log of 2000000 empty lines", logOf(2000000, true)}};
	for (const auto &log : logs) {
		const auto measure = [](const std::function<void()> &work) {
			return apart([&] {
				const double before = memory(), start = processorTime();
				forgetPeak();
				work();
				return std::vector<double>{processorTime() - start, peakMemory() - before};
			});
		};
		std::vector<double> times, bareTimes;
		double peak = 0, barePeak = 0;
		for (int turn = 0; turn < 15; ++turn) {
			const auto whole = measure([&] { openScreen(3, {BENCH_SKIN, log.path, false}); });
			const auto bare = measure([&] { makeBareEntries(log.path.c_str()); });
			times.push_back(whole[0]);
			bareTimes.push_back(bare[0]);
			peak = whole[1];
			barePeak = bare[1];
		}
		const double time = median(times) / median(bareTimes), peaks = peak / barePeak;
		row(std::string(log.name) + ", to its bare entries: time", text(1e3 * median(times), 0, " ms"),
		    text(1e3 * median(bareTimes), 0, " ms"), text(time, 2), "<= 1.25", time <= 1.25);
		row(std::string(log.name) + ", to its bare entries: peak memory", text(1e-6 * peak, 0, " MB"),
		    text(1e-6 * barePeak, 0, " MB"), text(peaks, 2), "<= 1.2", peaks <= 1.2);
	}
}

/// Seconds from dlopen to the first wait for a key, or to the end of the empty object's entry point.
double loadPlugin(bool counted = false)
{
	double ready = 0;
	const Watcher watcher = [&](int) -> std::optional<Key> {
		CALLGRIND_STOP_INSTRUMENTATION;
		if (ready == 0)
			ready = now();
		return std::nullopt;
	};
	prepare(plain, watcher);
	const double start = now();
	if (counted)
		CALLGRIND_START_INSTRUMENTATION;
	run();
	return ready - start;
}

double loadEmpty(bool counted = false)
{
	if (counted)
		CALLGRIND_START_INSTRUMENTATION;
	const double start = now();
	void *handle = dlopen(BENCH_EMPTY, RTLD_NOW);
	const auto entry = handle ? reinterpret_cast<int (*)()>(dlsym(handle, "plugin_exec")) : nullptr;
	if (!entry)
		fail(dlerror());
	entry();
	CALLGRIND_STOP_INSTRUMENTATION;
	const double took = now() - start;
	dlclose(handle);
	return took;
}

/// Presses "down" five times, instrumented, in a list of `lines` lines.
void countKeys(int lines)
{
	// Tall rows, so that the smallest list fills its box as well.
	const std::string skin = temporaryFolder() + "/skin.toml";
	std::ifstream from(BENCH_SKIN);
	std::stringstream content;
	content << from.rdbuf();
	std::ofstream(skin) << std::regex_replace(content.str(), std::regex("fontsize *= *[0-9]+"),
	                                          "fontsize = 45");

	const Watcher watcher = [](int pressed) -> std::optional<Key> {
		if (pressed == 0)
			return entryKey(3);
		constexpr int first = 10; // by then, Pango's thread has found the fonts that it looks for
		if (pressed == first)
			CALLGRIND_START_INSTRUMENTATION;
		if (pressed >= first + 5) {
			CALLGRIND_STOP_INSTRUMENTATION;
			return std::nullopt;
		}
		return pressed >= first || pressed % 2 ? Key::down : Key::up;
	};
	prepare({skin, logOf(lines), true}, watcher);
	run();
}

/// Draws a line of `characters` characters, instrumented, in a room for 75.
void countText(int characters)
{
	std::string line;
	while (line.size() < static_cast<size_t>(characters))
		line += "a line of text ";
	line.resize(static_cast<size_t>(characters));
	desk::PixelCanvas canvas;
	desk::TextStyle style;
	style.face = desk::Face::columns;
	style.rowHeight = 20;
	const desk::Rect room = {60, 60, 600, 20};
	canvas.text(room, line, style); // loads the font
	CALLGRIND_START_INSTRUMENTATION;
	canvas.text(room, line, style);
	CALLGRIND_STOP_INSTRUMENTATION;
}

/// Runs this program under callgrind, and returns the number of instructions.
double instructions(const std::string &what)
{
	const std::string out = temporaryFolder() + "/callgrind.out";
	const std::string program = fs::read_symlink("/proc/self/exe");
	const std::string command = "valgrind --tool=callgrind --instr-atstart=no --callgrind-out-file='" + out +
	                            "' '" + program + "' count " + what + " >'" + out + ".log' 2>&1";
	runOrEnd(command);
	std::ifstream file(out);
	for (std::string line; std::getline(file, line);)
		if (line.rfind("totals:", 0) == 0)
			return std::strtod(line.c_str() + 7, nullptr);
	fail("callgrind counted nothing");
}

void measureLoading()
{
	std::vector<double> ours, empty;
	for (int i = 0; i < 201; ++i) {
		ours.push_back(loadPlugin());
		empty.push_back(loadEmpty());
	}
	row("from dlopen to the menu, to an empty C++ object: time", text(1e6 * median(ours), 0, " us"),
	    text(1e6 * median(empty), 0, " us"), text(median(ours) / median(empty), 2), "", true);
	const double counted = instructions("load"), countedEmpty = instructions("empty");
	row("from dlopen to the menu, to an empty C++ object: instructions", text(counted, 0),
	    text(countedEmpty, 0), text(counted / countedEmpty, 2), "", true);
}

void measureKeys()
{
	const double ten = instructions("key 10") / 5;
	row("a key in a list of 10: instructions", text(ten, 0), "", text(ten, 0), "<= 500000", ten <= 500000);
	for (const int lines : {10000, 1000000}) {
		const double many = instructions("key " + std::to_string(lines)) / 5;
		row("a key in a list of " + std::to_string(lines) + ", to one of 10: instructions", text(many, 0),
		    text(ten, 0), text(many / ten, 3), "0.99 to 1.01", many / ten >= 0.99 && many / ten <= 1.01);
	}
}

/// The canvas lays out only the visible part of a line. Complete layout would take 13 and 10,000 times as much as the
/// visible part; the search for that part remains.
void measureText()
{
	const double seen = instructions("text 80");
	const struct
	{
		int characters;
		double limit;
	} lines[] = {{1022, 2}, {1000000, 10}};
	for (const auto &line : lines) {
		const double whole = instructions("text " + std::to_string(line.characters));
		row("a line of " + std::to_string(line.characters) + " characters, to its first 80: instructions",
		    text(whole, 0), text(seen, 0), text(whole / seen, 2), "<= " + text(line.limit, 0),
		    whole / seen <= line.limit);
	}
}

void measureAll()
{
	measureLogs(); // first, while this program's own memory is small
	measureLargeLogs();
	measureLoading();
	measureCommands();
	measureFiles();
	measureKeys();
	measureText();
}

} // namespace

int main(int argc, char **argv)
try {
	// N is a number, which the function is given.
	static const std::map<std::string, void (*)(int)> commands = {
		{"table", [](int) { measureAll(); }},
		{"open N", [](int entry) { openScreen(entry, plain, turns); }},
		{"count load", [](int) { loadPlugin(true); }},
		{"count empty", [](int) { loadEmpty(true); }},
		{"count key N", countKeys},
		{"count text N", countText},
	};
	std::string words;
	int number = 0;
	for (int i = 1; i < argc; ++i) {
		const bool isNumber = std::isdigit(static_cast<unsigned char>(argv[i][0]));
		if (isNumber)
			number = std::atoi(argv[i]);
		words += (words.empty() ? "" : " ") + std::string(isNumber ? "N" : argv[i]);
	}
	const auto command = commands.find(words);
	if (command == commands.end()) {
		std::fprintf(stderr,
		             "usage: host_bench table | open ENTRY | count load|empty|key LINES|text CHARACTERS\n");
		return 2;
	}
	command->second(number);
	return 0;
} catch (const desk::Error &error) {
	std::fprintf(stderr, "host_bench: %s\n", error.line.c_str());
	return error.status;
}

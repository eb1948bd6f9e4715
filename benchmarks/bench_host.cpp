#include "bench_host.h"

#include "desk.h"
#include "peer.h"
#include "plugin.h"
#include "skin.h"

#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>
#include <filesystem>
#include <fstream>
#include <memory>
#include <utility>

namespace bench
{

namespace
{

namespace fs = std::filesystem;

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
		const desk::Press press = {watcher(pressed++).value_or(desk::Key::exit), false};
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
std::string log;

double statusLine(const char *name)
{
	std::ifstream status("/proc/self/status");
	for (std::string line; std::getline(status, line);)
		if (line.rfind(name, 0) == 0)
			return 1024 * std::strtod(line.c_str() + std::strlen(name), nullptr);
	fail(std::string("no ") + name + " in /proc/self/status");
}

} // namespace

void prepare(const Stage &stage, const Watcher &watcher)
{
	desk::Desk &desk = desk::Desk::get();
	desk.setSkin(desk::Skin::parse(desk::Skin::read(stage.skin), stage.skin));
	log = stage.log;
	viewer = std::make_unique<WatchedViewer>(watcher, stage.paints);
	desk.setViewer(viewer.get(), stage.paints);
}

void run(const std::string &path)
{
	desk::Desk &desk = desk::Desk::get();
	const std::unique_ptr<desk::Plugin> plugin = desk::Plugin::load(path);
	void *const handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
	if (!log.empty())
		*static_cast<const char **>(dlsym(handle, "ff_scan")) = log.c_str();
	dlclose(handle);
	desk.beginRun();
	plugin->exec();
	desk.endRun();
}

double now()
{
	return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

double processorTime()
{
	timespec time;
	clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
	return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

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

std::string logOf(int lines, bool empty)
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

} // namespace bench

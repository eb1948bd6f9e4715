// A receiver that is never switched off: the screens open thousands of times, and the plugin is loaded and unloaded.
// Neither memory nor open files grow, and no file is left.

#include "description.h"
#include "desk.h"
#include "files.h"
#include "half.h"
#include "inside.h"
#include "plugin.h"
#include "support.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <fcntl.h>
#include <malloc.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>

#if defined(__SANITIZE_ADDRESS__)
// GCC has no header for it.
extern "C" size_t __sanitizer_get_current_allocated_bytes();
#endif

using desk::Desk;
using desk::Files;
using desk::Key;
using desk::Plugin;
using support::ReceiverFolder;
using support::TempFolder;

namespace
{

namespace fs = std::filesystem;

constexpr size_t openings = VEXLO_OPENINGS;
constexpr int loads = VEXLO_LOADS;
constexpr int runs = VEXLO_RUNS;
constexpr size_t warmUp = 10;

#if defined(__SANITIZE_ADDRESS__)
constexpr size_t slack = 0;
#else
// malloc counts a block 16 bytes more when the remainder beside it is too small for another block. A leak of one
// block in every round would be a hundred times this.
constexpr size_t slack = 128;
#endif

/// Bytes that are allocated and not freed.
size_t memoryInUse()
{
#if defined(__SANITIZE_ADDRESS__)
	return __sanitizer_get_current_allocated_bytes();
#else
	const struct mallinfo2 info = mallinfo2();
	return info.uordblks + info.hblkhd;
#endif
}

size_t openFiles()
{
	const fs::directory_iterator files("/proc/self/fd");
	return static_cast<size_t>(std::distance(begin(files), end(files))) - 1; // the iterator's own file
}

/// Memory and files that a process holds.
struct Resources
{
	size_t memory = memoryInUse();
	size_t files = openFiles();

	friend bool operator==(const Resources &a, const Resources &b)
	{
		const auto [less, more] = std::minmax(a.memory, b.memory);
		return more - less <= slack && a.files == b.files;
	}
	friend std::ostream &operator<<(std::ostream &out, const Resources &resources)
	{
		return out << resources.memory << " bytes and " << resources.files << " files";
	}
};

/// Processes left behind become children of this one, so that the test can find them.
void adoptOrphans()
{
	ASSERT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
}

void expectNothingLeft(const TempFolder &receiver)
{
	EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left, running or not waited for";
	EXPECT_EQ(errno, ECHILD);
	const std::string temporary = receiver / "var/tmp"; // the viewer's half creates it
	EXPECT_TRUE(!std::filesystem::exists(temporary) || std::filesystem::is_empty(temporary));
}

/// A receiver with cheap but real commands.
struct SmallReceiver : ReceiverFolder
{
	SmallReceiver()
	{
		meminfo(support::readFile(support::sourcePath("samples/receiver/proc/meminfo")));
		mtd(support::readFile(support::sourcePath("samples/receiver/proc/mtd")));
		scanLog(support::readFile(support::sourcePath("samples/receiver/var/scaning.log")));
		write("bin/ps", "#!/bin/sh\necho '  PID USER COMMAND\n    1 root init\n  123 root telnetd'\n", true);
		write("bin/df",
		      "#!/bin/sh\n"
		      "echo 'Filesystem Size Used Available Use% Mounted on\n/dev/root 7.8M 3.1M 4.7M 40% /'\n",
		      true);
	}
};

/// Opens and leaves the current entry for `rounds` times, then leaves the menu. Measures the process whenever the
/// menu is back.
class Viewer : public support::Viewer
{
public:
	// Allocates in advance: its own memory must not grow while it measures.
	explicit Viewer(size_t rounds, const std::string &pressed = "") : support::Viewer(pressed), left(rounds)
	{
		resources.reserve(rounds + 1);
		dialogs.reserve(2);
	}

	std::optional<Key> next() override
	{
		inside = !inside;
		if (!inside) {
			if (++opened == 1 || left == 0)
				dialogs.push_back(
					support::Json::parse(desk::describe(Desk::get().windows())).back().at("class"));
			return Key::exit;
		}
		resources.push_back(Resources());
		if (left == 0)
			return Key::exit;
		--left;
		return Key::ok;
	}

	std::vector<Resources> resources;
	size_t opened = 0;
	std::vector<std::string> dialogs; ///< classes of the first and the last dialog

private:
	size_t left;
	bool inside = false;
};

struct Entry
{
	const char *name;
	int number;
	const char *dialog;

	friend std::ostream &operator<<(std::ostream &out, const Entry &entry) { return out << entry.name; }
};

class Openings : public testing::TestWithParam<Entry>
{
};

TEST_P(Openings, leave_the_process_as_it_was)
{
	adoptOrphans();
	const SmallReceiver receiver;
	Files::get().setRoot(receiver.path(), desk::Start().served, false);

	Viewer menu(openings, support::repeat("down ", GetParam().number));
	Viewer *const viewer = &menu;
	EXPECT_EQ(support::runInside(menu, support::pluginPath()), -1);

	EXPECT_EQ(viewer->opened, openings);
	EXPECT_EQ(viewer->dialogs, std::vector<std::string>(2, GetParam().dialog));
	ASSERT_EQ(viewer->resources.size(), openings + 1);
	const Resources &first = viewer->resources[warmUp];
	const auto other = std::find_if(viewer->resources.begin() + warmUp, viewer->resources.end(),
	                                [&](const Resources &one) { return !(one == first); });
	if (other != viewer->resources.end()) {
		ADD_FAILURE() << "after " << warmUp << " openings " << first << " were in use, after "
					  << other - viewer->resources.begin() << " " << *other << ", after " << openings << ' '
					  << viewer->resources.back();
	}
	expectNothingLeft(receiver);
	printf("%zu openings: %zu bytes and %zu files in use after %zu, %zu and %zu after the last\n", openings,
	       first.memory, first.files, warmUp, viewer->resources.back().memory,
	       viewer->resources.back().files);
}

INSTANTIATE_TEST_SUITE_P(All, Openings,
                         testing::Values(Entry{"process_info", 0, "ePsDialog"},
                                         Entry{"memory_info", 1, "eMemInfoDialog"},
                                         Entry{"scan_log", 2, "eScanLogDialog"},
                                         Entry{"system_info", 3, "eSysInfDialog"}),
                         [](const auto &tested) { return std::string(tested.param.name); });

/// Whether any piece of the plugin is mapped.
bool isMapped()
{
	const std::string name = fs::path(support::pluginPath()).filename();
	return support::readFile("/proc/self/maps").find(name) != std::string::npos;
}

TEST(Loading, leaves_nothing_of_the_plugin_behind)
{
	Desk &desk = Desk::get();
	support::Viewer viewer;
	desk.setViewer(&viewer);
	std::optional<Resources> first;
	for (int load = 1; load <= loads; ++load) {
		std::unique_ptr<Plugin> plugin = Plugin::load(support::pluginPath());
		ASSERT_TRUE(isMapped());
		desk.beginRun();
		ASSERT_EQ(plugin->exec(), -1);
		desk.endRun();
		plugin.reset();
		ASSERT_EQ(dlopen(support::pluginPath().c_str(), RTLD_NOW | RTLD_NOLOAD), nullptr)
			<< "after load " << load;
		ASSERT_FALSE(isMapped()) << "after load " << load;
		if (load == static_cast<int>(warmUp))
			first.emplace();
	}
	const Resources last;
	EXPECT_EQ(last, *first);
	printf("%d loads: %zu bytes and %zu files in use after %zu, %zu and %zu after the last\n", loads,
	       first->memory, first->files, warmUp, last.memory, last.files);
	desk.setViewer(nullptr);
}

/// The viewer's half for several runs.
class Player : public desk::Peer
{
public:
	Player(int plays, const std::string &root) : left(plays), menu(keys)
	{
		desk::Start start;
		start.plugin = support::pluginPath();
		start.root = root;
		start.skin = support::readFile(support::sourcePath("desk/skins/default.toml"));
		reply = start;
	}

	void send(const desk::ToViewer &message) override
	{
		if (std::holds_alternative<desk::Loaded>(message))
			reply = desk::Run();
		else if (std::holds_alternative<desk::Returned>(message) && --left > 0)
			reply = desk::Load();
	}

	std::optional<desk::ToHost> receive() override
	{
		if (!reply)
			return left > 0 ? menu.receive() : std::nullopt;
		const auto next = std::exchange(reply, std::nullopt);
		if (std::holds_alternative<desk::Start>(*next))
			reply = desk::Load();
		if (std::holds_alternative<desk::Run>(*next))
			menu = support::Viewer(keys);
		return next;
	}

private:
	static constexpr char keys[] = "ok exit down ok exit down ok exit down ok green exit";

	int left;
	support::Viewer menu;
	std::optional<desk::ToHost> reply;
};

/// The resources of a process after `times` runs as the plugin's half, each opening all screens. `digits`: of its ID.
Resources afterRuns(int times, const std::string &root, size_t &digits)
{
	int ends[2];
	EXPECT_EQ(pipe(ends), 0);
	const pid_t child = fork();
	if (child == 0) {
		int status = 0;
		{
			Player player(times, root);
			status = desk::runHalf(player);
		}
		const Resources resources;
		const bool written =
			write(ends[1], &resources, sizeof resources) == static_cast<ssize_t>(sizeof resources);
		_exit(written ? status : 99);
	}
	digits = std::to_string(child).size();
	close(ends[1]);
	Resources resources;
	EXPECT_EQ(read(ends[0], &resources, sizeof resources), static_cast<ssize_t>(sizeof resources));
	close(ends[0]);
	int status = -1;
	EXPECT_EQ(waitpid(child, &status, 0), child);
	EXPECT_EQ(status, 0);
	return resources;
}

TEST(Runs, end_with_the_same_memory_however_many_there_were)
{
	adoptOrphans();
	const SmallReceiver receiver;
	size_t digitsOfFew = 0, digitsOfMany = 0;
	Resources few = afterRuns(static_cast<int>(warmUp), receiver.path(), digitsOfFew);
	const Resources many = afterRuns(runs, receiver.path(), digitsOfMany);
	if (digitsOfFew != digitsOfMany) // a half keeps its process ID in strings
		few = afterRuns(static_cast<int>(warmUp), receiver.path(), digitsOfFew);
	EXPECT_EQ(digitsOfFew, digitsOfMany);
	EXPECT_EQ(many, few);
	expectNothingLeft(receiver);
	printf("--plays: %zu bytes and %zu files in use after %zu, %zu and %zu after %d\n", few.memory, few.files,
	       warmUp, many.memory, many.files, runs);
}

/// mallinfo counts the memory of malloc's thread cache as in use. Only a tunable at the start turns the cache off.
[[gnu::constructor]] void keepNoMemory(int, char **argv, char **)
{
	if (std::getenv("GLIBC_TUNABLES"))
		return;
	setenv("GLIBC_TUNABLES", "glibc.malloc.tcache_count=0", 1);
	execv("/proc/self/exe", argv);
	_exit(EXIT_FAILURE);
}

} // namespace

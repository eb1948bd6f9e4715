// Each source of the plugin's data with each fault: every screen opens and shows what is left, and the menu comes
// back.

#include "models.h"
#include "support.h"

#include <gtest/gtest.h>

#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <optional>
#include <ostream>

using support::DeskRun;
using support::Json;
using support::ReceiverFolder;
using support::runDesk;

namespace
{

namespace fs = std::filesystem;

enum class Kind
{
	file,
	command,
	varTmp
};

struct Source
{
	const char *name;
	Kind kind;
	const char *path;      ///< below the receiver's folder
	const char *temporary; ///< commands: where in /var/tmp their output goes
};

constexpr Source sources[] = {
	{"meminfo", Kind::file, "proc/meminfo", nullptr},    {"mtd", Kind::file, "proc/mtd", nullptr},
	{"scanlog", Kind::file, "var/scaning.log", nullptr}, {"ps", Kind::command, "bin/ps", "ps.tmp"},
	{"df", Kind::command, "bin/df", "df.tmp"},           {"var_tmp", Kind::varTmp, nullptr, nullptr},
};

const Source &source(const std::string &name)
{
	for (const Source &one : sources)
		if (name == one.name)
			return one;
	throw std::logic_error("no source " + name);
}

// The contents of each source without a fault, longer than what a full disk takes.
const std::map<std::string, std::string> healthy = {
	{"meminfo", "MemTotal:      62092 kB\nMemFree:        4404 kB\nMemShared:         0 kB\n"
                "Buffers:         480 kB\nCached:        26120 kB\nSwapCached:        0 kB\n"
                "Active:        13836 kB\nInactive:      21372 kB\nHighTotal:         0 kB\n"
                "HighFree:          0 kB\nLowTotal:      62092 kB\nSwapTotal:         0 kB\n"},
	{"mtd", "dev:    size   erasesize  name\n"
            "mtd0: 007c0000 00020000 \"root\"\n"
            "mtd1: 00020000 00020000 \"boot loader\"\n"
            "mtd2: 00800000 00020000 \"whole flash\"\n"},
	{"scanlog", "scan of 19.2 east\ntransponder 1\nstart at 21:14:07\n  found 24 services\nend\n"},
	{"ps", "  PID USER COMMAND\n    1 root init\n   17 root with many arguments " + std::string(200, 'x') +
               "\n   18 root another one " + std::string(300, 'y') + "\n  123 root last\n"},
	{"df", "Filesystem                Size      Used Available Use% Mounted on\n"
           "/dev/root                 7.8M      3.1M      4.7M  40% /\n"
           "tmpfs                    30.2M      4.0K     30.2M   0% /tmp\n"
           "/dev/sda1               149.0G    112.6G     36.4G  76% /media/hdd\n"
           "/dev/" +
               std::string(300, 'd') + " 1.0G 0 1.0G 0% /mnt/" + std::string(200, 'm') +
               "\n"
               "none                      9.0T         0      9.0T   0% /mnt/last\n"},
};

constexpr size_t diskBlock = 512; // the shell's unit of ulimit -f

/// A receiver with one faulty source, and the bytes that still reach the plugin.
struct Scenario
{
	ReceiverFolder receiver;
	std::string varTmp = receiver / "var/tmp";
	std::map<std::string, std::string> environment;
	bool dropRights = false; ///< as the superuser: run without the right to open everything

	std::map<std::string, std::optional<std::string>> bytes; ///< nullopt: the source does not open
	long logSize = 0;

	Scenario()
	{
		fs::create_directories(varTmp); // some faults put a file there first
		for (const auto &[name, content] : healthy) {
			bytes[name] = content;
			if (source(name).kind == Kind::file)
				receiver.write(source(name).path, content);
			else
				print(source(name), content);
		}
		logSize = static_cast<long>(healthy.at("scanlog").size());
		// Only the receiver's own commands exist.
		environment["PATH"] = "/nonexistent";
		environment["LD_PRELOAD"] = TEST_DISK_FAULTS;
		const char *options = std::getenv("ASAN_OPTIONS");
		environment["ASAN_OPTIONS"] =
			(options ? std::string(options) + ':' : "") + "verify_asan_link_order=0";
	}

	std::string place(const Source &of) const { return receiver / of.path; }
	/// The file that receives a command's output.
	std::string output(const Source &of) const { return varTmp + "/" + of.temporary; }

	/// Replaces the command by a shell script.
	void script(const Source &command, const std::string &lines) const
	{
		receiver.write(command.path, "#!/bin/sh\n" + lines, true);
	}

	/// The command prints `content`; `before` and `after` are lines of its script.
	void print(const Source &command, const std::string &content, const std::string &before = "",
	           const std::string &after = "") const
	{
		const std::string output = receiver.write(std::string("output/") + command.name, content);
		script(command, before + "/bin/cat '" + output + "'\n" + after);
	}

	/// Makes reading fail in the middle of the last line.
	void breakReading(const Source &of, const std::string &path)
	{
		const std::string content = healthy.at(of.name);
		const size_t lastLine = content.rfind('\n', content.size() - 2) + 1;
		std::string &paths = environment["DISK_FAULTS_BREAK"];
		paths += (paths.empty() ? "" : ":") + path;
		// One limit for every path, so the shortest content sets it.
		std::string &after = environment["DISK_FAULTS_AFTER"];
		const size_t middle = lastLine + 5;
		const size_t most = after.empty() ? middle : std::min<size_t>(std::stoul(after), middle);
		after = std::to_string(most);
		for (auto &[name, left] : bytes) {
			const Source &one = source(name);
			if (paths.find(one.temporary ? output(one) : place(one)) != paths.npos)
				left = healthy.at(name).substr(0, healthy.at(name).rfind('\n', most) + 1);
		}
	}
};

void remove(const Scenario &scenario, const Source &of)
{
	fs::remove(scenario.place(of));
}

/// One fault of one kind of source.
struct Cell
{
	const char *what; ///< without `arrange`: why the fault cannot occur
	void (*arrange)(Scenario &, const Source &) = nullptr;
};

struct Fault
{
	const char *name;
	Cell file, command, varTmp;

	const Cell &cell(Kind kind) const
	{
		return kind == Kind::file ? file : kind == Kind::command ? command : varTmp;
	}
};

const Cell noCommand = {"no command makes it"};
const Cell runsNothing = {"it runs nothing"};

const Fault faults[] = {
	{"missing",
     {"there is no such file",
      [](Scenario &scenario, const Source &file) {
		  remove(scenario, file);
		  scenario.bytes[file.name] = std::nullopt;
	  }},
     {"its output is gone before it is read",
      [](Scenario &scenario, const Source &command) {
		  const std::string removing = std::string("/bin/rm /var/tmp/") + command.temporary + '\n';
		  scenario.print(command, healthy.at(command.name), "", removing);
		  scenario.bytes[command.name] = std::nullopt;
	  }},
     {"the folder is gone before anything is read",
      [](Scenario &scenario, const Source &) {
		  scenario.print(source("ps"), healthy.at("ps"), "", "/bin/rm -r '" + scenario.varTmp + "'\n");
		  scenario.bytes["ps"] = scenario.bytes["df"] = std::nullopt;
	  }}},

	{"no_rights",
     {"nobody may read it",
      [](Scenario &scenario, const Source &file) {
		  chmod(scenario.place(file).c_str(), 0);
		  scenario.dropRights = true;
		  scenario.bytes[file.name] = std::nullopt;
	  }},
     {"nobody may execute it",
      [](Scenario &scenario, const Source &command) {
		  chmod(scenario.place(command).c_str(), 0644);
		  scenario.bytes[command.name] = "";
	  }},
     {"unreadable files have the names of both files in it",
      [](Scenario &scenario, const Source &) {
		  for (const char *name : {"ps.tmp", "df.tmp"})
			  chmod(scenario.receiver.write(std::string("var/tmp/") + name, "left over\n").c_str(), 0);
		  scenario.dropRights = true;
		  scenario.bytes["ps"] = scenario.bytes["df"] = std::nullopt;
	  }}},

	{"folder",
     {"a folder is in its place",
      [](Scenario &scenario, const Source &file) {
		  remove(scenario, file);
		  fs::create_directory(scenario.place(file));
		  scenario.bytes[file.name] = "";
		  // The file system decides the offset of a folder's end.
		  FILE *folder = fopen(scenario.place(file).c_str(), "r");
		  ASSERT_NE(folder, nullptr);
		  fseek(folder, 0, SEEK_END);
		  if (std::string(file.name) == "scanlog")
			  scenario.logSize = ftell(folder);
		  fclose(folder);
	  }},
     {"a folder is in its place",
      [](Scenario &scenario, const Source &command) {
		  remove(scenario, command);
		  fs::create_directory(scenario.place(command));
		  scenario.bytes[command.name] = "";
	  }},
     {"folders are in the place of both files in it",
      [](Scenario &scenario, const Source &) {
		  fs::create_directory(scenario.varTmp + "/ps.tmp");
		  fs::create_directory(scenario.varTmp + "/df.tmp");
		  scenario.bytes["ps"] = scenario.bytes["df"] = "";
	  }}},

	{"empty",
     {"it has no byte",
      [](Scenario &scenario, const Source &file) {
		  scenario.receiver.write(file.path, "");
		  scenario.bytes[file.name] = "";
		  if (std::string(file.name) == "scanlog")
			  scenario.logSize = 0;
	  }},
     {"an executable file without a byte",
      [](Scenario &scenario, const Source &command) {
		  scenario.receiver.write(command.path, "", true);
		  scenario.bytes[command.name] = "";
	  }},
     {"that is its normal state"}},

	{"read_error",
     {"EIO in the middle of the last line",
      [](Scenario &scenario, const Source &file) { scenario.breakReading(file, scenario.place(file)); }},
     {"EIO in the middle of the last line of its output",
      [](Scenario &scenario, const Source &command) {
		  scenario.breakReading(command, scenario.output(command));
	  }},
     {"EIO in both files in it",
      [](Scenario &scenario, const Source &) {
		  for (const char *name : {"ps", "df"})
			  scenario.breakReading(source(name), scenario.output(source(name)));
	  }}},

	{"full_disk",
     noCommand,
     {"only its first 512 bytes can be written",
      [](Scenario &scenario, const Source &command) {
		  scenario.print(command, healthy.at(command.name), "trap '' XFSZ\nulimit -f 1\n");
		  scenario.bytes[command.name] = healthy.at(command.name).substr(0, diskBlock);
	  }},
     {"not a byte of either command can be written",
      [](Scenario &scenario, const Source &) {
		  for (const char *name : {"ps", "df"}) {
			  scenario.print(source(name), healthy.at(name), "trap '' XFSZ\nulimit -f 0\n");
			  scenario.bytes[name] = "";
		  }
	  }}},

	{"fails",
     noCommand,
     {"it prints two lines, an error, and ends with status 1",
      [](Scenario &scenario, const Source &command) {
		  const std::string &all = healthy.at(command.name);
		  const std::string two = all.substr(0, all.find('\n', all.find('\n') + 1) + 1);
		  scenario.print(command, two, "", "echo it went wrong >&2\nexit 1\n");
		  scenario.bytes[command.name] = two;
	  }},
     runsNothing},

	{"megabytes",
     {"it is over two megabytes long",
      [](Scenario &scenario, const Source &file) {
		  const std::string &one = healthy.at(file.name);
		  const std::string all = support::repeat(one, static_cast<int>((2 << 20) / one.size()) + 1);
		  scenario.receiver.write(file.path, all);
		  scenario.bytes[file.name] = all;
		  if (std::string(file.name) == "scanlog")
			  scenario.logSize = static_cast<long>(all.size());
	  }},
     {"over two megabytes",
      [](Scenario &scenario, const Source &command) {
		  const std::string &one = healthy.at(command.name);
		  const std::string all = support::repeat(one, static_cast<int>((2 << 20) / one.size()) + 1);
		  scenario.print(command, all);
		  scenario.bytes[command.name] = all;
	  }},
     runsNothing},

	{"nothing",
     noCommand,
     {"it succeeds and prints nothing",
      [](Scenario &scenario, const Source &command) {
		  scenario.script(command, "exit 0\n");
		  scenario.bytes[command.name] = "";
	  }},
     runsNothing},

	{"no_command",
     noCommand,
     {"the PATH has no such command",
      [](Scenario &scenario, const Source &command) {
		  remove(scenario, command);
		  scenario.bytes[command.name] = "";
	  }},
     runsNothing},
};

// Opens every screen in one run. The indexes below say after which key each screen or menu is checked.
const char *const keys = "ok exit down ok exit down ok exit down ok green exit";
constexpr size_t processes = 1, memory = 4, scanLog = 7, systemInfo = 10, afterwards = 12;
constexpr size_t menus[] = {0, 2, 3, 5, 6, 8, 9, 11};

const char *const list = "eListBox<eListBoxEntryText>";

std::string label(const DeskRun &run, size_t index, size_t nth)
{
	const Json &widget = run.widget(index, "eLabel", nth);
	return widget.value("text", "there is no such label");
}

/// Compares, and prints only the place of the first difference.
void expectText(const std::string &shown, const std::string &wanted, const char *what)
{
	if (shown == wanted)
		return;
	const size_t at = static_cast<size_t>(
		std::mismatch(shown.begin(), shown.end(), wanted.begin(), wanted.end()).first - shown.begin());
	ADD_FAILURE() << what << " is wrong from byte " << at << " on: \"" << shown.substr(at, 200)
				  << "\" instead of \"" << wanted.substr(at, 200) << '"';
}

template <class Entries> void expectList(const DeskRun &run, size_t index, const Entries &wanted)
{
	const Json &box = run.widget(index, list);
	EXPECT_EQ(box.at("count"), wanted.size());
	const Json &rows = box.at("rows");
	ASSERT_GE(rows.size(), std::min<size_t>(wanted.size(), 15)) << "the first rows are on the screen";
	ASSERT_LE(rows.size(), wanted.size());
	auto entry = wanted.begin();
	for (const Json &row : rows) {
		expectText(row.get<std::string>(), entry->text, "a row");
		++entry;
	}
}

void expectScreens(const DeskRun &run, const Scenario &scenario)
{
	const auto bytes = [&](const char *name) { return scenario.bytes.at(name).value_or(""); };

	EXPECT_EQ(run.window(processes).at("class"), "ePsDialog");
	const PsSnapshot ps = modelPs(bytes("ps"));
	expectText(label(run, processes, 0), ps.header, "the heading of the process list");
	expectList(run, processes, ps.rows);

	EXPECT_EQ(run.window(memory).at("class"), "eMemInfoDialog");
	const MemInfoColumns meminfo = modelMemInfo(bytes("meminfo"));
	expectText(label(run, memory, 0), meminfo.names, "the column of names");
	expectText(label(run, memory, 1), meminfo.values, "the column of values");

	EXPECT_EQ(run.window(scanLog).at("class"), "eScanLogDialog");
	ModelScanLog log = modelScanLog(bytes("scanlog"), "/var/scaning.log");
	log.summary = scenario.bytes.at("scanlog")
	                  ? "size of /var/scaning.log : " + std::to_string(scenario.logSize) + " bytes"
	                  : "file \"/var/scaning.log\" not found";
	expectText(label(run, scanLog, 0), log.summary, "the line under the scan log");
	expectList(run, scanLog, log.entries);

	EXPECT_EQ(run.window(systemInfo).at("class"), "eSysInfDialog");
	const MtdColumns mtd = modelMtd(bytes("mtd"));
	const MountColumns mounts = modelMounts(bytes("df"));
	const std::string wanted[] = {"MTD blocks:", mtd.dev,       mtd.size,          mtd.erasesize,
	                              mtd.name,      "Mounts:\n\n", mounts.filesystem, mounts.usage};
	for (size_t i = 0; i < std::size(wanted); ++i)
		expectText(label(run, systemInfo, i), wanted[i], "a label of the system info");
}

DeskRun runAll(const Scenario &scenario)
{
	if (scenario.dropRights && geteuid() == 0) {
		// Programs started from now on lack the superuser's right to open everything.
		EXPECT_EQ(prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE), 0) << std::strerror(errno);
		EXPECT_EQ(prctl(PR_CAPBSET_DROP, CAP_DAC_READ_SEARCH), 0) << std::strerror(errno);
	}
	// A process that a run leaves behind becomes a child of this one.
	EXPECT_EQ(prctl(PR_SET_CHILD_SUBREAPER, 1), 0);
	const DeskRun run = runDesk(scenario.receiver.path(), keys, {}, scenario.environment);
	EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
	EXPECT_EQ(errno, ECHILD);
	return run;
}

void expectGoodEnd(const DeskRun &run, const Scenario &scenario)
{
	EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
	EXPECT_EQ(run.outcome.out, "plugin_exec returned -1: the viewer left the menu\n");
	for (const size_t index : menus) {
		ASSERT_EQ(run.dump[index].at("windows").size(), 1u);
		EXPECT_EQ(run.window(index).at("class"), "eVexloMenu") << "after key number " << index;
	}
	EXPECT_TRUE(run.dump[afterwards].at("windows").empty());
	if (fs::exists(scenario.varTmp)) {
		EXPECT_TRUE(fs::is_empty(scenario.varTmp)) << "something is left in /var/tmp";
	}
}

struct Case
{
	const Source *source;
	const Fault *fault;

	friend std::ostream &operator<<(std::ostream &out, const Case &one)
	{
		return out << one.fault->cell(one.source->kind).what;
	}
};

std::vector<Case> cases()
{
	std::vector<Case> all;
	for (const Source &one : sources)
		for (const Fault &fault : faults)
			if (fault.cell(one.kind).arrange)
				all.push_back({&one, &fault});
	return all;
}

class Faults : public testing::TestWithParam<Case>
{
};

TEST_P(Faults, leave_every_screen_to_be_opened_and_left)
{
	Scenario scenario;
	const auto &[spoilt, fault] = GetParam();
	fault->cell(spoilt->kind).arrange(scenario, *spoilt);
	const DeskRun run = runAll(scenario);
	ASSERT_EQ(run.dump.size(), afterwards + 1) << run.outcome.err;
	expectScreens(run, scenario);
	expectGoodEnd(run, scenario);
}

INSTANTIATE_TEST_SUITE_P(All, Faults, testing::ValuesIn(cases()), [](const auto &tested) {
	return std::string(tested.param.source->name) + "_" + tested.param.fault->name;
});

TEST(Health, shows_everything_where_nothing_is_wrong)
{
	Scenario scenario;
	const std::string seen = scenario.receiver / "seen";
	scenario.print(source("ps"), healthy.at("ps"),
	               "echo /var/tmp/* '" + scenario.varTmp + "'/* >'" + seen + "'\n");
	const DeskRun run = runAll(scenario);
	ASSERT_EQ(run.dump.size(), afterwards + 1) << run.outcome.err;
	expectScreens(run, scenario);
	expectGoodEnd(run, scenario);

	// The runs with faults rely on these contents and places.
	EXPECT_EQ(support::readFile(seen), "/var/tmp/ps.tmp " + scenario.varTmp + "/ps.tmp\n");
	EXPECT_EQ(label(run, processes, 0), "  PID USER COMMAND\n");
	EXPECT_EQ(run.widget(processes, list)["count"], 4);
	EXPECT_EQ(run.widget(processes, list)["rows"][0], "    1 root init\n");
	EXPECT_EQ(label(run, memory, 0), "HighTotal: \nHighFree:  \nLowTotal:  \nSwapTotal: \n");
	EXPECT_EQ(label(run, memory, 1), "0 KB\n0 KB\n62092 KB\n0 KB\n");
	EXPECT_EQ(run.widget(scanLog, list)["rows"],
	          Json({"0 scan of 19.2 east\n", "1 transponder 1\n", "2 tart at 21:14:07\n", "2 ",
	                "3   found 24 services\n", "4 end\n"}));
	EXPECT_EQ(label(run, scanLog, 0), "size of /var/scaning.log : 74 bytes");
	EXPECT_EQ(label(run, systemInfo, 1), "dev:\nmtd0:\nmtd1:\nmtd2:\n");
}

} // namespace

#include "fake_platform.h"
#include "generator.h"
#include "models.h"
#include "own_processes.h"
#include "ps_snapshot.h"
#include "streams.h"
#include "temp_folder.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace ps_snapshot_test
{

using support::exists;
using support::writeFile;
using namespace std::string_literals;
using Strings = std::vector<std::string>;

const support::OwnProcesses ownProcesses;

const char psFile[] = "/var/tmp/ps.tmp";

PsSnapshot parse(const std::string &bytes)
{
	return parsePsSnapshot(streamOf(bytes).get());
}

Strings texts(const PsSnapshot &snapshot)
{
	Strings result;
	for (const PsEntry &row : snapshot.rows)
		result.push_back(row.text);
	return result;
}

Strings pids(const PsSnapshot &snapshot)
{
	Strings result;
	for (const PsEntry &row : snapshot.rows)
		result.push_back(row.pid);
	return result;
}

TEST(PsSnapshot, no_output_gives_an_empty_header_and_no_rows)
{
	const PsSnapshot snapshot = parse("");
	EXPECT_EQ(snapshot.header, "");
	EXPECT_TRUE(snapshot.rows.empty());
}

TEST(PsSnapshot, one_line_is_the_header_and_no_row)
{
	const PsSnapshot snapshot = parse("  PID TTY          TIME CMD\n");
	EXPECT_EQ(snapshot.header, "  PID TTY          TIME CMD\n");
	EXPECT_TRUE(snapshot.rows.empty());
}

TEST(PsSnapshot, the_first_line_is_the_header_whatever_it_holds)
{
	const PsSnapshot snapshot = parse("    1 root     init\n    2 root     sh\n");
	EXPECT_EQ(snapshot.header, "    1 root     init\n");
	EXPECT_EQ(pids(snapshot), Strings({"2"}));
	EXPECT_EQ(parse("\n1 a\n").header, "\n");
}

TEST(PsSnapshot, each_row_has_the_pid_of_its_own_line_in_the_order_printed)
{
	const PsSnapshot snapshot = parse("PID CMD\n  1 init\n 300 sh\n20 top\n");
	EXPECT_EQ(texts(snapshot), Strings({"  1 init\n", " 300 sh\n", "20 top\n"}));
	EXPECT_EQ(pids(snapshot), Strings({"1", "300", "20"}));
}

TEST(PsSnapshot, a_row_without_a_number_has_the_pid_of_the_nearest_number_above)
{
	const PsSnapshot snapshot = parse("PID CMD\nnone\n\n 17 sh\nnone\n   \nx 18\n19 top\nnone\n");
	EXPECT_EQ(pids(snapshot), Strings({"0", "0", "17", "17", "17", "17", "19", "19"}));
	EXPECT_EQ(snapshot.rows.size(), 8u);
}

TEST(PsSnapshot, a_number_in_the_header_is_carried_into_the_rows_below)
{
	EXPECT_EQ(pids(parse("7 processes\nnone\n8 sh\n")), Strings({"7", "8"}));
}

TEST(PsSnapshot, every_snapshot_starts_at_pid_0)
{
	parse("PID\n5 sh\n");
	EXPECT_EQ(pids(parse("PID\nnone\n")), Strings({"0"}));
}

TEST(PsSnapshot, rows_keep_their_line_ends_as_read)
{
	EXPECT_EQ(texts(parse("PID\n1 a\n2 b\r\n3 c")), Strings({"1 a\n", "2 b\r\n", "3 c"}));
}

TEST(PsSnapshot, a_pid_is_read_as_the_c_library_reads_an_int)
{
	EXPECT_EQ(pids(parse("PID\n\t\v 5x\n+6 a\n-7 a\n0x10\n007 a\n8\n- 9\n+\n")),
	          Strings({"5", "6", "-7", "0", "7", "8", "8", "8"}));
	EXPECT_EQ(pids(parse("PID\n2147483647 a\n2147483648 a\n4294967298 a\n99999999999999999999 a\n")),
	          byLong(Strings({"2147483647", "-2147483648", "2", "-1"}), Strings(4, "2147483647")));
}

TEST(PsSnapshot, a_line_of_1021_characters_and_its_end_is_one_row)
{
	const std::string line = "5 " + std::string(1019, 'x') + '\n';
	EXPECT_EQ(texts(parse("PID\n" + line)), Strings({line}));
}

TEST(PsSnapshot, a_line_end_beyond_1022_characters_is_a_row_of_its_own)
{
	const std::string line = "5 " + std::string(1020, 'x');
	const PsSnapshot snapshot = parse("PID\n" + line + "\n6 y\n");
	EXPECT_EQ(texts(snapshot), Strings({line, "\n", "6 y\n"}));
	EXPECT_EQ(pids(snapshot), Strings({"5", "5", "6"}));
}

TEST(PsSnapshot, a_line_of_1023_characters_makes_two_rows)
{
	const std::string line = "5 " + std::string(1021, 'x');
	EXPECT_EQ(texts(parse("PID\n" + line + '\n')), Strings({line.substr(0, 1022), "x\n"}));
}

TEST(PsSnapshot, the_rest_of_a_long_line_inherits_the_pid)
{
	const std::string line = "1234 " + std::string(1995, 'x');
	const PsSnapshot snapshot = parse("PID\n" + line + '\n');
	EXPECT_EQ(texts(snapshot), Strings({line.substr(0, 1022), line.substr(1022) + '\n'}));
	EXPECT_EQ(pids(snapshot), Strings({"1234", "1234"}));
}

TEST(PsSnapshot, the_rest_of_a_long_line_has_its_own_pid_when_it_begins_with_a_number)
{
	const PsSnapshot snapshot = parse("PID\n5 " + std::string(1020, 'x') + "77 bottles\n");
	EXPECT_EQ(pids(snapshot), Strings({"5", "77"}));
}

TEST(PsSnapshot, a_line_of_5000_characters_makes_five_rows)
{
	const PsSnapshot snapshot = parse("PID\n9 " + std::string(4998, 'x') + "\n10 y\n");
	EXPECT_EQ(pids(snapshot), Strings({"9", "9", "9", "9", "9", "10"}));
	EXPECT_EQ(texts(snapshot)[4].size(), 5000u - 4 * 1022 + 1);
}

TEST(PsSnapshot, a_long_headers_rest_is_a_row)
{
	const PsSnapshot snapshot = parse(std::string(1022, 'H') + "REST\n1 a\n");
	EXPECT_EQ(snapshot.header, std::string(1022, 'H'));
	EXPECT_EQ(texts(snapshot), Strings({"REST\n", "1 a\n"}));
}

TEST(PsSnapshot, a_row_ends_at_a_nul_byte_and_the_next_line_is_whole)
{
	const PsSnapshot snapshot = parse("P\0ID\n1 a\0 b\n\0 2\n3 c\n"s);
	EXPECT_EQ(snapshot.header, "P");
	EXPECT_EQ(texts(snapshot), Strings({"1 a", "", "3 c\n"}));
	EXPECT_EQ(pids(snapshot), Strings({"1", "1", "3"}));
}

TEST(PsSnapshot, every_other_byte_and_the_percent_sign_stay_as_they_are)
{
	std::string line = "5 %s%n%d%% \x1b[2J ";
	for (int byte = 1; byte < 256; ++byte) {
		if (byte != '\n')
			line += static_cast<char>(byte);
	}
	line += '\n';
	EXPECT_EQ(texts(parse("PID\n" + line)), Strings({line}));
}

TEST(PsSnapshot, ten_thousand_processes_are_ten_thousand_rows)
{
	std::string bytes = "PID CMD\n";
	for (int pid = 1; pid <= 10000; ++pid)
		bytes += std::to_string(pid) + " sh\n";
	const Strings rows = pids(parse(bytes));
	ASSERT_EQ(rows.size(), 10000u);
	for (std::size_t row = 0; row < 10000; ++row)
		ASSERT_EQ(rows[row], std::to_string(row + 1));
}

TEST(PsSnapshot, rows_but_not_the_header_are_looked_up_whole_and_in_order)
{
	FakePlatform platform;
	parse("PID CMD\n 1 init\n 2 sh");
	EXPECT_EQ(platform.lookUps,
	          Strings({"dcgettext(null, \" 1 init\n\", 5)", "dcgettext(null, \" 2 sh\", 5)"}));
}

TEST(PsSnapshot, an_empty_row_is_looked_up_as_well)
{
	FakePlatform platform;
	platform.catalogue = {{"", "Language: de\n"}};
	const PsSnapshot snapshot = parse("PID CMD\n\0 hidden\n"s);
	EXPECT_EQ(platform.lookUps, Strings({"dcgettext(null, \"\", 5)"}));
	EXPECT_EQ(texts(snapshot), Strings({"Language: de\n"})) << "for it, a catalogue answers with its header";
}

TEST(PsSnapshot, a_row_reads_as_the_catalogue_has_it_and_keeps_the_pid_of_the_output)
{
	FakePlatform platform;
	platform.catalogue = {{" 1 init\n", "99 der erste Prozess"}, {"PID CMD\n", "not to be used"}};
	const PsSnapshot snapshot = parse("PID CMD\n 1 init\nnone\n");
	EXPECT_EQ(snapshot.header, "PID CMD\n");
	EXPECT_EQ(texts(snapshot), Strings({"99 der erste Prozess", "none\n"}));
	EXPECT_EQ(pids(snapshot), Strings({"1", "1"}));
}

TEST(PsSnapshot, a_null_translation_is_an_empty_row)
{
	FakePlatform platform;
	platform.catalogueIsNull = true;
	const PsSnapshot snapshot = parse("PID CMD\n 1 init\n");
	EXPECT_EQ(snapshot.header, "PID CMD\n");
	EXPECT_EQ(texts(snapshot), Strings({""}));
	EXPECT_EQ(pids(snapshot), Strings({"1"}));
}

TEST(PsSnapshot, a_read_error_keeps_the_rows_before_it)
{
	const PsSnapshot snapshot = parsePsSnapshot(failingStream("PID\n1 a\n2 b\n").get());
	EXPECT_EQ(texts(snapshot), Strings({"1 a\n", "2 b\n"}));
	EXPECT_EQ(parsePsSnapshot(failingStream("").get()).header, "");
}

TEST(PsSnapshot, captured_listings_become_their_lines_and_pids)
{
	const Strings names = fixturesIn("ps");
	EXPECT_GE(names.size(), 9u);
	for (const std::string &name : names) {
		SCOPED_TRACE(name);
		const std::string bytes = fixture(name);
		const PsSnapshot snapshot = parse(bytes);
		std::string column;
		std::string whole = snapshot.header;
		for (const PsEntry &row : snapshot.rows) {
			column += row.pid + '\n';
			whole += row.text;
		}
		EXPECT_EQ(column, fixture(name + ".pids"));
		if (bytes.find('\0') == std::string::npos) {
			EXPECT_EQ(whole, bytes);
		}
	}
}

TEST(PsSnapshot, generated_listings_read_as_the_model_reads_them)
{
	Generator generator(2101, {"PID", "root", "sh", "123", "  1 ", "[kworker/0:1]", "99999999999"},
	                    {1022, 2044});
	std::size_t rows = 0;
	for (int round = 0; round < 12000; ++round) {
		const std::string bytes = generator.file();
		const PsSnapshot snapshot = parse(bytes);
		ASSERT_EQ(textOf(snapshot), textOf(modelPs(bytes))) << round << ": " << shown(bytes);
		rows += snapshot.rows.size();
	}
	EXPECT_GT(rows, 100000u);
}

TEST(TakePsSnapshot, runs_the_command_reads_closes_and_removes_in_this_order)
{
	FakePlatform platform;
	platform.replaceShell([] { writeFile(psFile, "PID CMD\n 1 init\n"); });
	const PsSnapshot snapshot = takePsSnapshot();
	EXPECT_EQ(platform.calls, Strings({"system(\"ps >/var/tmp/ps.tmp\")", "eDebug(\"[write ps info]\")",
	                                   "fopen(\"/var/tmp/ps.tmp\", \"r\")", "fclose(stream)",
	                                   "remove(\"/var/tmp/ps.tmp\")"}));
	EXPECT_EQ(snapshot.header, "PID CMD\n");
	EXPECT_EQ(pids(snapshot), Strings({"1"}));
	EXPECT_FALSE(exists(psFile));
}

TEST(TakePsSnapshot, a_file_that_does_not_open_is_closed_as_a_null_stream_and_removed)
{
	FakePlatform platform;
	platform.replaceShell([] { writeFile(psFile, "PID CMD\n 1 init\n"); });
	platform.failOpening(psFile);
	const PsSnapshot snapshot = takePsSnapshot();
	EXPECT_EQ(platform.calls,
	          Strings({"system(\"ps >/var/tmp/ps.tmp\")", "eDebug(\"[write ps info]\")",
	                   "fopen(\"/var/tmp/ps.tmp\", \"r\")", "fclose(null)", "remove(\"/var/tmp/ps.tmp\")"}));
	EXPECT_EQ(snapshot.header, "");
	EXPECT_TRUE(snapshot.rows.empty());
	EXPECT_FALSE(exists(psFile));
}

TEST(TakePsSnapshot, a_file_that_is_missing_gives_nothing)
{
	FakePlatform platform;
	platform.replaceShell();
	const PsSnapshot snapshot = takePsSnapshot();
	EXPECT_EQ(snapshot.header, "");
	EXPECT_TRUE(snapshot.rows.empty());
	EXPECT_EQ(platform.calls[3], "fclose(null)");
}

TEST(TakePsSnapshot, a_folder_in_place_of_the_file_gives_nothing_and_is_removed)
{
	ASSERT_EQ(mkdir(psFile, 0700), 0);
	const PsSnapshot snapshot = takePsSnapshot();
	EXPECT_EQ(snapshot.header, "");
	EXPECT_TRUE(snapshot.rows.empty());
	EXPECT_FALSE(exists(psFile));
}

TEST(TakePsSnapshot, a_read_error_still_closes_and_removes)
{
	FakePlatform platform;
	platform.replaceShell();
	platform.answerOpening(psFile, failingStream("PID\n1 a\n").release());
	EXPECT_EQ(pids(takePsSnapshot()), Strings({"1"}));
	EXPECT_EQ(Strings(platform.calls.begin() + 3, platform.calls.end()),
	          Strings({"fclose(stream)", "remove(\"/var/tmp/ps.tmp\")"}));
}

TEST(TakePsSnapshot, the_real_command_lists_this_process)
{
	writeFile(psFile, "left over\n0 from before\n");
	const PsSnapshot snapshot = takePsSnapshot();
	EXPECT_NE(snapshot.header.find("PID"), std::string::npos) << snapshot.header;
	std::string name = support::readFile("/proc/self/comm"); // an emulator's name in an emulator
	name.pop_back();
	int seen = 0;
	for (const PsEntry &row : snapshot.rows) {
		EXPECT_EQ(row.text.back(), '\n');
		seen += row.pid == std::to_string(getpid()) && row.text.find(name) != std::string::npos;
	}
	EXPECT_EQ(seen, 1);
	EXPECT_FALSE(exists(psFile));
}

TEST(TakePsSnapshot, a_command_that_does_not_exist_gives_nothing)
{
	const std::string path = getenv("PATH");
	setenv("PATH", "/nonexistent", 1);
	const PsSnapshot snapshot = takePsSnapshot();
	setenv("PATH", path.c_str(), 1);
	EXPECT_EQ(snapshot.header, "");
	EXPECT_TRUE(snapshot.rows.empty());
	EXPECT_FALSE(exists(psFile));
}

TEST(KillPid, says_so_and_runs_the_shells_kill)
{
	FakePlatform platform;
	platform.replaceShell();
	killPid("123");
	EXPECT_EQ(platform.calls, Strings({"eDebug(\"-----kill pid  - 123-----\")", "system(\"kill -9 123\")"}));
	EXPECT_EQ(platform.debugFormats, Strings({"-----kill pid  - %s-----"}));
}

TEST(KillPid, takes_any_text_for_a_pid)
{
	FakePlatform platform;
	platform.replaceShell();
	killPid("0");
	killPid("-1");
	killPid("");
	const std::string digits(500, '7');
	killPid(digits);
	EXPECT_EQ(platform.calls, Strings({"eDebug(\"-----kill pid  - 0-----\")", "system(\"kill -9 0\")",
	                                   "eDebug(\"-----kill pid  - -1-----\")", "system(\"kill -9 -1\")",
	                                   "eDebug(\"-----kill pid  - -----\")", "system(\"kill -9 \")",
	                                   "eDebug(\"-----kill pid  - " + digits + "-----\")",
	                                   "system(\"kill -9 " + digits + "\")"}));
}

TEST(KillPid, ends_that_process_and_no_other)
{
	pid_t children[2];
	for (pid_t &child : children) {
		child = fork();
		if (child == 0) {
			pause();
			_exit(0);
		}
		ASSERT_GT(child, 0);
	}

	killPid(std::to_string(children[0]));
	int status = 0;
	EXPECT_EQ(waitpid(children[0], &status, 0), children[0]);
	EXPECT_TRUE(WIFSIGNALED(status));
	EXPECT_EQ(WTERMSIG(status), SIGKILL);
	EXPECT_EQ(waitpid(children[1], &status, WNOHANG), 0);

	kill(children[1], SIGTERM);
	waitpid(children[1], &status, 0);
}

} // namespace ps_snapshot_test

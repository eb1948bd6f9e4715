#include "support.h"
#include "tmux.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <regex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

namespace terminal_screen_test
{

const std::string demo = support::deskhostPath() + " --screen terminal --through " TERMINAL_DEMO;
const std::string helpLine = "Arrows j k move";

std::string row(const std::string &screen, size_t number)
{
	size_t start = 0;
	for (size_t i = 0; i < number && start != std::string::npos; ++i)
		start = screen.find('\n', start) + 1;
	return screen.substr(start, screen.find('\n', start) - start);
}

/// A terminal with the demonstration on its screen.
struct Demo : Tmux
{
	/// `setting`: a variable of its environment, as NAME=value.
	explicit Demo(const std::string &setting = "")
		: Tmux(90, 30), process(start("env " + setting + " " + demo))
	{
		if (!shows("last key: none") || !shows(helpLine))
			throw std::runtime_error("the demonstration does not start");
	}

	const int process;
};

/// Starts the demonstration, calls `end`, and expects the terminal in its former state.
template <class End>
void expectRestored(int status, const End &end, const std::string &also = "", const std::string &before = "")
{
	Tmux terminal(90, 30);
	const std::string modes = terminal.modes();
	const int process = terminal.start(before + demo);
	ASSERT_TRUE(terminal.shows(helpLine));
	EXPECT_TRUE(support::eventually([&] { return terminal.state() == "1 0 1"; })) << terminal.state();
	end(terminal, process);
	ASSERT_TRUE(terminal.shows("status=" + std::to_string(status)));
	EXPECT_EQ(terminal.state(), "0 1 0");
	const std::string screen = terminal.screen();
	EXPECT_EQ(screen.find(helpLine), std::string::npos);
	EXPECT_NE(screen.find(also), std::string::npos) << screen;
	EXPECT_EQ(terminal.modes(), modes);
	terminal.enter("echo the shell li''ves");
	EXPECT_TRUE(terminal.shows("the shell lives"));
}

TEST(TerminalScreen, keys_of_every_kind_arrive)
{
	const Demo terminal;
	const char *const keys[][2] = {
		{"Down", "down"},   {"Up", "up"},         {"Left", "left"},
		{"Right", "right"}, {"PageUp", "pageup"}, {"PageDown", "pagedown"},
		{"Home", "home"},   {"End", "end"},       {"Enter", "ok"},
		{"F1", "red"},      {"F2", "green"},      {"F3", "yellow"},
		{"F4", "blue"},     {"j", "down"},        {"k", "up"},
		{"h", "left"},      {"l", "right"},       {"r", "red"},
		{"g", "green"},     {"y", "yellow"},      {"b", "blue"},
		{"4", "4"},
	};
	std::string all;
	for (const auto &[key, name] : keys) {
		terminal.press(key);
		ASSERT_TRUE(terminal.shows(std::string("last key: ") + name + " "));
		all += std::string(" ") + name;
	}
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("status=0"));
	std::string said = terminal.screen();
	said = said.substr(said.find("keys:"));
	said.erase(std::remove(said.begin(), said.end(), '\n'), said.end());
	EXPECT_EQ(said.substr(0, said.find("plugin_exec")), "keys:" + all + " exit");
}

TEST(TerminalScreen, keys_that_other_terminals_send_arrive_too)
{
	const Demo terminal;
	const std::pair<std::string, const char *> keys[] = {
		{"\033[B", "down"},   {"\033OA", "up"},   {"\033[7~", "home"}, {"\033OF", "end"},
		{"\033[H", "home"},   {"\033[8~", "end"}, {"\033[11~", "red"}, {"\033[[B", "green"},
		{"\033OR", "yellow"}, {"\033OM", "ok"},
	};
	for (const auto &[bytes, name] : keys) {
		terminal.send({bytes.begin(), bytes.end()});
		ASSERT_TRUE(terminal.shows(std::string("last key: ") + name + " "));
	}
}

TEST(TerminalScreen, esc_is_exit)
{
	const Demo terminal;
	terminal.press("Escape");
	EXPECT_TRUE(terminal.shows("keys: exit"));
	EXPECT_TRUE(terminal.shows("status=0"));
}

TEST(TerminalScreen, unknown_keys_do_nothing)
{
	const Demo terminal;
	for (const std::string bytes :
	     {"\033[99~", "\033[1;7Z", "\033Oz", "x", "\xC3\xA4", "\xFF", "\t", "\001", "\177"})
		terminal.send({bytes.begin(), bytes.end()});
	terminal.press("F12");
	terminal.press("Down");
	ASSERT_TRUE(terminal.shows("last key: down"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("keys: down exit\n"));
}

TEST(TerminalScreen, a_screen_is_drawn_with_lines_and_help)
{
	const Demo terminal;
	const std::string screen = terminal.screen();
	EXPECT_NE(screen.find("\u250C Demonstration \u2500\u2500"), std::string::npos) << screen;
	EXPECT_NE(screen.find("\u2502 entry 18 "), std::string::npos) << screen;
	EXPECT_NE(screen.find("wide \u65E5\u672C, combining e\u0301, box \u2500, euro \u20AC"), std::string::npos)
		<< screen;
	EXPECT_NE(screen.find("control \u241B[31m and \u2401 and \uFFFD"), std::string::npos) << screen;
	EXPECT_NE(screen.find("[R] delete log"), std::string::npos) << screen;
	EXPECT_EQ(row(screen, 29),
	          " Arrows j k move  PgUp PgDn page  Enter ok  Esc q back  r g y b colours  F9 log");
	terminal.press("8");
	ASSERT_TRUE(terminal.shows("\u250C kill pid \u2500"));
	EXPECT_TRUE(terminal.shows("\u2502 ent\u2502"));
	terminal.press("8");
	ASSERT_TRUE(terminal.losesSight("kill pid"));
	EXPECT_TRUE(terminal.shows("\u2502 entry 9 "));
}

TEST(TerminalScreen, a_terminal_that_is_too_small_says_so_and_goes_on_when_it_is_larger)
{
	Tmux terminal(60, 20);
	terminal.start(demo);
	ASSERT_TRUE(terminal.shows("The terminal is 60 x 20.\nThis screen needs 80 x 24.\n"));
	EXPECT_EQ(terminal.screen().find("Demonstration"), std::string::npos);
	terminal.press("Down"); // ignored, because the picture is not visible
	terminal.resize(80, 23);
	ASSERT_TRUE(terminal.shows("The terminal is 80 x 23"));
	terminal.resize(79, 24);
	ASSERT_TRUE(terminal.shows("The terminal is 79 x 24"));
	terminal.resize(80, 24);
	ASSERT_TRUE(terminal.shows("last key: none"));
	ASSERT_TRUE(terminal.shows(helpLine));
	terminal.resize(9, 4);
	ASSERT_TRUE(terminal.losesSight("Demonstration"));
	EXPECT_TRUE(terminal.shows("The"));
	terminal.resize(90, 30);
	ASSERT_TRUE(terminal.shows("last key: none"));
	terminal.resize(50, 10);
	ASSERT_TRUE(terminal.shows("The terminal is 50 x 10"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("keys: exit"));
}

TEST(TerminalScreen, the_size_is_the_terminals_whatever_the_environment_says)
{
	Tmux terminal(80, 24);
	terminal.start("env LINES=10 COLUMNS=200 " + std::string(demo));
	ASSERT_TRUE(terminal.shows("last key: none"));
	ASSERT_TRUE(terminal.shows(helpLine));
	terminal.resize(20, 5);
	EXPECT_TRUE(
		terminal.shows("The terminal is 20 x\n 5.\nThis screen needs 80\n x 24.\nEnlarge, or press q."));
}

TEST(TerminalScreen, is_whole_in_80_columns_24_rows)
{
	Tmux terminal(80, 24);
	terminal.start(demo);
	ASSERT_TRUE(terminal.shows(helpLine));
	const std::string screen = terminal.screen();
	EXPECT_NE(row(screen, 0).find(" Demonstration "), std::string::npos) << screen;
	for (const char *each : {"last key: none", "entry 0 ", "entry 18 ", "[R] delete log"})
		EXPECT_NE(screen.find(each), std::string::npos) << each << '\n' << screen;
	EXPECT_NE(row(screen, 22).find("\u2518"), std::string::npos) << screen;
	EXPECT_NE(row(screen, 23).find(helpLine), std::string::npos) << screen;
}

TEST(TerminalScreen, f9_shows_the_last_notes_until_a_key_is_pressed)
{
	Tmux terminal(80, 24);
	terminal.start(demo);
	ASSERT_TRUE(terminal.shows(helpLine));
	terminal.press("F9");
	ASSERT_TRUE(terminal.shows("There are no debug lines yet."));
	terminal.press("Down");
	ASSERT_TRUE(terminal.shows("last key: none"));
	terminal.press("2");
	ASSERT_TRUE(terminal.shows("last key: 2"));
	terminal.press("1");
	ASSERT_TRUE(terminal.shows("last key: 1"));
	terminal.press("F9");
	ASSERT_TRUE(terminal.shows("note 1199.\na note \u241B[31m in red\n"));
	EXPECT_EQ(row(terminal.screen(), 0), "note 1178.");
	EXPECT_TRUE(terminal.shows("The last debug lines. Any key goes back."));
	terminal.resize(90, 30);
	ASSERT_TRUE(terminal.shows("note 1172."));
	terminal.press("Escape");
	EXPECT_TRUE(terminal.shows("last key: 1"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("status=0"));
}

TEST(TerminalScreen, a_larger_terminal_has_the_screen_in_its_middle)
{
	const Demo terminal;
	terminal.resize(110, 40);
	ASSERT_TRUE(terminal.shows(std::string(10, ' ') + " Arrows j k move"));
	const std::string screen = terminal.screen();
	EXPECT_EQ(row(screen, 34).find("Arrows"), 11u) << screen;
}

TEST(TerminalScreen, the_end_gives_the_terminal_back)
{
	expectRestored(0, [](const Tmux &terminal, int) { terminal.press("q"); });
}

/// The plugin's half crashes; the viewer leaves the report over the picture.
void expectCrash(const std::string &key, const std::string &says, const std::string &before = "")
{
	SCOPED_TRACE(key + before);
	expectRestored(
		1,
		[&](const Tmux &terminal, int) {
			terminal.press(key);
			EXPECT_TRUE(terminal.shows(says)) << terminal.screen();
			EXPECT_TRUE(terminal.shows("A key starts it anew, exit leaves."));
			EXPECT_TRUE(terminal.shows("last key: none")) << "the picture stays";
			terminal.press("q");
		},
		says, before);
}

TEST(TerminalScreen, exit_in_the_middle_is_shown_and_gives_the_terminal_back)
{
	expectCrash("3", "It ended in the middle of its run, with status 7");
}

TEST(TerminalScreen, ctrl_c_gives_the_terminal_back)
{
	expectRestored(130, [](const Tmux &terminal, int) { terminal.press("C-c"); });
}

TEST(TerminalScreen, ctrl_c_ends_what_is_busy_too)
{
	expectRestored(130, [](const Tmux &terminal, int) {
		terminal.press("9");
		terminal.shows("last key: busy");
		terminal.press("C-c");
	});
}

TEST(TerminalScreen, sigterm_gives_the_terminal_back)
{
	expectRestored(143, [](const Tmux &, int process) { kill(process, SIGTERM); });
}

TEST(TerminalScreen, sighup_gives_the_terminal_back)
{
	expectRestored(129, [](const Tmux &, int process) { kill(process, SIGHUP); });
}

#if !defined(__SANITIZE_ADDRESS__) // AddressSanitizer handles the crash itself
TEST(TerminalScreen, a_crash_is_shown_and_gives_the_terminal_back)
{
	expectCrash("5", "It was ended by signal 11, Segmentation fault");
	expectCrash("7", "It was ended by signal 11, Segmentation fault");
}
#endif

TEST(TerminalScreen, an_abort_is_shown_and_gives_the_terminal_back)
{
	expectCrash("6", "It was ended by signal 6, Aborted");
}

TEST(TerminalScreen, every_signal_that_ends_is_shown_and_gives_the_terminal_back)
{
	for (const int signal : {SIGXFSZ, SIGTRAP, SIGALRM, SIGKILL})
		expectCrash("4", "It was ended by signal " + std::to_string(signal) + ", ",
		            "env DEMO_END=" + std::to_string(signal) + " ");
}

TEST(TerminalScreen, ends_without_a_word_are_shown_and_give_the_terminal_back)
{
	expectCrash("4", "with status 7", "env DEMO_END=_exit ");
	expectCrash("4", "with status 7", "env DEMO_END=quick_exit ");
	expectCrash("4", "with status 7", "env DEMO_END=exec ");
}

TEST(TerminalScreen, a_crash_is_followed_by_a_new_start)
{
	const Demo terminal;
	terminal.press("6");
	ASSERT_TRUE(terminal.shows("A key starts it anew"));
	terminal.press("Down");
	ASSERT_TRUE(terminal.losesSight("A key starts it anew"));
	EXPECT_TRUE(terminal.shows("last key: none")) << "that key was for this only";
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("keys: exit\n"));
	EXPECT_TRUE(terminal.shows("status=0"));
}

TEST(TerminalScreen, what_is_busy_is_shown_and_can_be_ended)
{
	const Demo terminal;
	terminal.press("9");
	ASSERT_TRUE(terminal.shows("The plugin has not answered for 2 s."));
	for (int i = 0; i < 3; ++i)
		terminal.press("q");
	EXPECT_TRUE(terminal.shows("It was ended, because it had not answered for"));
	EXPECT_TRUE(terminal.shows("exit leaves"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("status=1"));
}

TEST(TerminalScreen, a_signal_ends_what_ignores_it_and_what_it_has_started)
{
	for (const char *key : {"C-c", "TERM", "HUP"}) {
		SCOPED_TRACE(key);
		const bool interrupt = std::string(key) == "C-c";
		const Demo terminal("DEMO_END=ignore");
		terminal.press("4");
		std::this_thread::sleep_for(std::chrono::milliseconds(300));
		if (interrupt)
			terminal.press("C-c");
		else
			kill(terminal.process, std::string(key) == "TERM" ? SIGTERM : SIGHUP);
		ASSERT_TRUE(terminal.shows(interrupt                    ? "status=130"
		                           : std::string(key) == "TERM" ? "status=143"
		                                                        : "status=129"));
		EXPECT_EQ(terminal.state(), "0 1 0");
		terminal.enter("echo sleepers: $(pgrep -s 0 -fxc 'sleep 4323')");
		EXPECT_TRUE(terminal.shows("sleepers: 0")) << terminal.screen();
	}
}

TEST(TerminalScreen, what_is_printed_beside_the_screen_is_shown_afterwards_and_not_obeyed)
{
	const Demo terminal("DEMO_END=print");
	terminal.press("4");
	ASSERT_TRUE(terminal.shows("last key: 4"));
	EXPECT_EQ(terminal.screen().find("printed"), std::string::npos);
	terminal.press("Down"); // the command did not take keys
	ASSERT_TRUE(terminal.shows("last key: down"));
	terminal.press("q");
	EXPECT_TRUE(
		terminal.shows("printed \u241B[31m in red\nby a command\nand its error\nkeys: 4 down exit\n"));
}

TEST(TerminalScreen, notes_are_shown_when_the_terminal_is_given_back)
{
	const auto note = [](const Tmux &terminal) {
		terminal.press("1");
		terminal.shows("last key: 1");
		EXPECT_EQ(terminal.screen().find("a note"), std::string::npos);
	};
	expectRestored(
		0,
		[&](const Tmux &terminal, int) {
			note(terminal);
			terminal.press("q");
		},
		"a note \u241B[31m in red\n");
	expectRestored(
		1,
		[&](const Tmux &terminal, int) {
			note(terminal);
			terminal.press("6");
			terminal.shows("exit leaves");
			terminal.press("q");
		},
		"a note");
	expectRestored(
		143,
		[&](const Tmux &terminal, int process) {
			note(terminal);
			kill(process, SIGTERM);
		},
		"a note");
}

TEST(TerminalScreen, notes_are_bounded)
{
	Tmux terminal(90, 30);
	const std::string file = terminal.folder() + "/notes";
	// Records all bytes written to the terminal.
	terminal.start("script -qc '" + demo + "' " + file);
	ASSERT_TRUE(terminal.shows("last key: none"));
	terminal.press("2");
	ASSERT_TRUE(terminal.shows("last key: 2"));
	terminal.press("q");
	ASSERT_TRUE(terminal.shows("status=0"));
	const std::string notes = support::readFile(file);
	EXPECT_NE(notes.find("deskhost: earlier lines left out: 201\r\nnote 201.\r\nnote 202.\r\n"),
	          std::string::npos);
	EXPECT_NE(notes.find("note 1198.\r\nnote 1199.\r\n"), std::string::npos);
	EXPECT_EQ(notes.find("note 200."), std::string::npos);
}

TEST(TerminalScreen, notes_go_at_once_to_a_standard_error_elsewhere)
{
	Tmux terminal(90, 30);
	const std::string file = terminal.folder() + "/notes";
	terminal.start(demo + " 2>" + file);
	ASSERT_TRUE(terminal.shows("last key: none"));
	terminal.press("1");
	ASSERT_TRUE(terminal.shows("last key: 1"));
	EXPECT_EQ(support::readFile(file), "a note \u241B[31m in red\n");
}

TEST(TerminalScreen, stopping_gives_the_terminal_back_until_the_program_goes_on)
{
	Tmux terminal(90, 30);
	const std::string before = terminal.modes();
	terminal.start(demo);
	ASSERT_TRUE(terminal.shows(helpLine));
	for (const std::string key : {"down", "up"}) {
		terminal.press("C-z");
		ASSERT_TRUE(terminal.shows("Stopped"));
		EXPECT_EQ(terminal.state(), "0 1 0");
		EXPECT_EQ(terminal.modes(), before);
		terminal.enter("clear; fg");
		ASSERT_TRUE(terminal.shows(helpLine));
		EXPECT_TRUE(support::eventually([&] { return terminal.state() == "1 0 1"; })) << terminal.state();
		terminal.press(key);
		ASSERT_TRUE(terminal.shows("last key: " + key));
	}
	terminal.press("C-z");
	ASSERT_TRUE(terminal.shows("Stopped"));
	terminal.resize(100, 32); // a stopped program gets no SIGWINCH; it asks for the size when it continues
	terminal.enter("clear; fg");
	ASSERT_TRUE(terminal.shows(std::string(5, ' ') + " Arrows j k move"));
	terminal.press("q");
	EXPECT_TRUE(terminal.shows("keys: down up exit"));
	EXPECT_EQ(terminal.modes(), before);
}

TEST(TerminalScreen, a_signal_ends_what_is_stopped_beside_the_prompt)
{
	Tmux terminal(90, 30);
	terminal.enter("set -m");
	terminal.start(demo);
	ASSERT_TRUE(terminal.shows("last key: none"));
	terminal.press("C-z");
	ASSERT_TRUE(terminal.losesSight("last key: none"));
	terminal.enter("clear; bg; sleep 1; echo mid''dle");
	ASSERT_TRUE(terminal.shows("middle"));
	EXPECT_EQ(terminal.screen().find("last key"), std::string::npos);
	terminal.enter("kill %1; kill -CONT %1; sleep 1; wait %1; echo en''ded $?");
	ASSERT_TRUE(terminal.shows("ended 143"));
	EXPECT_EQ(terminal.screen().find("last key"), std::string::npos);
	EXPECT_EQ(terminal.state(), "0 1 0");
}

TEST(TerminalScreen, a_stop_by_another_signal_is_repaired)
{
	const Demo terminal;
	kill(-terminal.process, SIGSTOP); // like "kill -STOP %1" in the shell
	// The program could not restore the terminal, so Enter sends no line end.
	terminal.type("clear; echo in bet''ween");
	terminal.press("C-j");
	ASSERT_TRUE(terminal.shows("in between"));
	terminal.type("fg");
	terminal.press("C-j");
	ASSERT_TRUE(terminal.shows(helpLine));
	EXPECT_EQ(terminal.screen().find("in between"), std::string::npos);
	terminal.press("Down");
	EXPECT_TRUE(terminal.shows("last key: down"));
}

TEST(TerminalScreen, ctrl_l_repairs_what_others_wrote)
{
	const Demo terminal;
	const std::string whole = terminal.screen();
	terminal.scribble("\033[12;1Ha message to all users");
	ASSERT_TRUE(terminal.shows("a message to all users"));
	terminal.press("C-l");
	ASSERT_TRUE(terminal.losesSight("a message to all users"));
	ASSERT_TRUE(terminal.shows(helpLine));
	EXPECT_EQ(terminal.screen(), whole);
}

TEST(TerminalScreen, commands_and_their_modes_do_no_harm)
{
	const Demo terminal;
	terminal.press("0");
	ASSERT_TRUE(terminal.shows("last key: command 0"));
	terminal.press("Down");
	EXPECT_TRUE(terminal.shows("last key: down"));
}

TEST(TerminalScreen, terminals_that_cannot_be_used_get_one_clear_line)
{
	const struct
	{
		const char *terminal, *command, *says;
	} cases[] = {
		{"dumb", "",
	     "TERM=dumb cannot move the cursor; set TERM to what the terminal is, or use --screen none"},
		{"nosuch", "",
	     "TERM=nosuch is not known here; set TERM to what the terminal is, or use --screen none"},
		{"unknown", "",
	     "TERM=unknown is not known here; set TERM to what the terminal is, or use --screen none"},
		{"", "", "TERM is not set; set it to the terminal's name, or use --screen none"},
		{"tmux", " </dev/null", "standard input is not one; start it from a terminal, or use --screen none"},
		{"tmux", " >/dev/null",
	     "standard output is not one; leave out the redirection, or use --screen none"},
	};
	for (const auto &each : cases) {
		Tmux terminal(150, 30, each.terminal);
		terminal.start(demo + each.command);
		EXPECT_TRUE(
			terminal.shows(std::string("deskhost: cannot use the terminal: ") + each.says + "\nstatus=2 $"));
	}
}

TEST(TerminalScreen, the_locale_c_needs_no_other_characters)
{
	for (const char *type : {"tmux", "screen", "linux", "xterm", "vt100"}) {
		Tmux terminal(90, 30, type, {{"LC_ALL", "C"}});
		terminal.start(demo);
		ASSERT_TRUE(terminal.shows(helpLine)) << type;
		const std::string screen = terminal.screen();
		EXPECT_NE(screen.find("wide ? ? , combining ?, box ?, euro ?"), std::string::npos) << screen;
		EXPECT_NE(screen.find("control ?[31m and ? and ?"), std::string::npos) << screen;
		EXPECT_NE(screen.find(" Demonstration "), std::string::npos) << screen;
	}
}

TEST(TerminalScreen, colours_are_what_the_terminal_has)
{
	using Variables = std::map<std::string, std::string>;
	const struct
	{
		const char *terminal;
		Variables variables;
		const char *current; ///< the escape sequence of the current entry
		bool colours;
	} cases[] = {
		{"tmux-256color", {}, "48;5;26m", true},
		{"xterm", {}, "\033[44m", true},
		{"linux", {}, "\033[44m", true},
		{"vt100", {}, "\033[7m", false},
		{"vt100", {{"COLORTERM", "truecolor"}}, "\033[7m", false},
		{"tmux-256color", {{"NO_COLOR", "1"}, {"COLORTERM", "truecolor"}}, "\033[7m", false},
	};
	for (const auto &each : cases) {
		Tmux terminal(90, 30, each.terminal, each.variables);
		terminal.start(demo);
		ASSERT_TRUE(terminal.shows(helpLine)) << each.terminal;
		const std::string screen = terminal.colouredScreen();
		const std::string line = row(screen, 5);
		EXPECT_NE(line.find("entry 0"), std::string::npos) << line;
		EXPECT_NE(line.find(each.current), std::string::npos) << each.terminal << ": " << line;
		const std::string next = row(screen, 6);
		EXPECT_EQ(next.substr(0, next.find("entry")).find(each.current), std::string::npos) << next;
		const bool coloured = std::regex_search(screen, std::regex("\033\\[([0-9;]*;)?[34][0-8][;m]"));
		EXPECT_EQ(coloured, each.colours) << each.terminal;
	}
}

TEST(TerminalScreen, waiting_for_keys_takes_no_time)
{
	const Demo terminal;
	const pid_t child = support::childrenOf(terminal.process).at(0);
	const auto ticksOf = [](int id) {
		unsigned long switches = 0;
		const std::string status = support::readFile("/proc/" + std::to_string(id) + "/status");
		sscanf(status.c_str() + status.find("\nvoluntary"), "\nvoluntary_ctxt_switches: %lu", &switches);
		return std::pair(support::cpuOf(id), switches);
	};
	const auto ticks = [&] { return std::pair(ticksOf(terminal.process), ticksOf(child)); };
	const auto before = ticks();
	ASSERT_GT(before.second.second, 0u);
	std::this_thread::sleep_for(std::chrono::seconds(2));
	EXPECT_EQ(ticks(), before);
}

/// A pseudo-terminal, to count the bytes written to it.
class Line
{
public:
	explicit Line(bool ignoreHangup = false)
	{
		winsize size = {30, 90, 0, 0};
		process = forkpty(&line, nullptr, nullptr, &size);
		if (process == 0) {
			setenv("TERM", "xterm-256color", 1);
			setenv("LC_ALL", "C.UTF-8", 1);
			unsetenv("COLORTERM");
			if (ignoreHangup)
				signal(SIGHUP, SIG_IGN);
			execl("/bin/sh", "sh", "-c", ("exec " + demo).c_str(), nullptr);
			_exit(127);
		}
	}
	~Line()
	{
		hangUp();
		if (process > 0) {
			kill(process, SIGKILL);
			waitpid(process, nullptr, 0);
		}
	}

	/// Reads until `text` came and then a pause.
	std::string readUntil(const std::string &text)
	{
		std::string got;
		for (;;) {
			pollfd input{line, POLLIN, 0};
			const bool seen = got.find(text) != std::string::npos;
			if (poll(&input, 1, seen ? 500 : 30000) <= 0)
				return got;
			char piece[4096];
			const ssize_t n = read(line, piece, sizeof piece);
			if (n <= 0)
				return got;
			got.append(piece, static_cast<size_t>(n));
		}
	}
	void type(const std::string &text)
	{
		ASSERT_EQ(write(line, text.data(), text.size()), static_cast<ssize_t>(text.size()));
	}
	void hangUp()
	{
		if (line >= 0)
			close(line);
		line = -1;
	}
	int end()
	{
		int status = -1;
		waitpid(process, &status, 0);
		process = 0;
		return status;
	}

private:
	int line = -1;
	pid_t process = 0;
};

TEST(TerminalScreen, a_key_sends_only_what_changes)
{
	Line line;
	const std::string whole = line.readUntil("F9");
	EXPECT_GT(whole.size(), 2000u);
	line.type("j"); // redraws the key's name, two entries and the scroll bar
	const std::string change = line.readUntil("down");
	EXPECT_NE(change.find("down"), std::string::npos);
	EXPECT_LT(change.size(), 300u) << change;
	RecordProperty("bytes_whole", static_cast<int>(whole.size()));
	RecordProperty("bytes_key", static_cast<int>(change.size()));
	printf("the first screen: %zu bytes, a key: %zu bytes\n", whole.size(), change.size());
}

TEST(TerminalScreen, a_hang_up_ends_the_program)
{
	Line line;
	line.readUntil("F9");
	line.hangUp();
	const int status = line.end();
	EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGHUP) << status;
}

TEST(TerminalScreen, a_hang_up_that_is_ignored_is_the_end_of_the_keys)
{
	Line line(true);
	line.readUntil("F9");
	line.hangUp();
	const int status = line.end();
	EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

} // namespace terminal_screen_test

#include "tmux.h"

#include "process.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace
{

std::string shellWord(const std::string &text)
{
	std::string out = "'";
	for (const char c : text)
		out += c == '\'' ? std::string("'\\''") : std::string(1, c);
	return out + "'";
}

} // namespace

Tmux::Tmux(int columns, int rows, const std::string &terminal,
           const std::map<std::string, std::string> &environment)
{
	std::map<std::string, std::string> variables = {{"PATH", getenv("PATH")},
	                                                {"HOME", folder()},
	                                                {"LC_ALL", "C.UTF-8"},
	                                                {"TERM", terminal},
	                                                {"PS1", "status=$? $ "}};
	for (const char *kept : {"ASAN_OPTIONS", "UBSAN_OPTIONS", "LSAN_OPTIONS"})
		if (const char *value = getenv(kept))
			variables[kept] = value;
	// Crashes must end as without a sanitizer.
	variables["ASAN_OPTIONS"] += ":handle_segv=0:handle_abort=0:use_sigaltstack=0";
	for (const auto &[variable, value] : environment)
		variables[variable] = value;
	std::string shell = "exec env -i";
	for (const auto &[variable, value] : variables)
		if (!value.empty())
			shell += " " + variable + "=" + shellWord(value);
	tmux({"start-server", ";", "set", "-g", "status", "off", ";", "set", "-g", "escape-time", "0", ";",
	      "new-session", "-d", "-x", std::to_string(columns), "-y", std::to_string(rows), shell + " sh"});
	EXPECT_TRUE(shows("status=0 $"));
}

Tmux::~Tmux()
{
	// Background jobs of a test survive its shell.
	std::istringstream sessions(tmux({"list-panes", "-a", "-F", "#{pane_pid}"}));
	tmux({"kill-server"});
	for (std::string session; std::getline(sessions, session);)
		support::run({"pkill", "-KILL", "-s", session});
}

std::string Tmux::tmux(const std::vector<std::string> &arguments) const
{
	support::Command command = {TMUX_PROGRAM, "-S", directory / "socket", "-f", "/dev/null"};
	command.insert(command.end(), arguments.begin(), arguments.end());
	return support::run(command, {{"TMUX", ""}, {"LC_ALL", "C.UTF-8"}}).out;
}

void Tmux::type(const std::string &text) const
{
	tmux({"send-keys", "-l", "--", text});
}

void Tmux::enter(const std::string &line) const
{
	type(line);
	press("Enter");
}

void Tmux::press(const std::string &key) const
{
	tmux({"send-keys", key});
}

void Tmux::send(const std::vector<unsigned char> &bytes) const
{
	std::vector<std::string> arguments = {"send-keys", "-H"};
	for (const unsigned char byte : bytes) {
		char hex[3];
		snprintf(hex, sizeof hex, "%02x", byte);
		arguments.emplace_back(hex);
	}
	tmux(arguments);
}

void Tmux::resize(int columns, int rows) const
{
	tmux({"resize-window", "-x", std::to_string(columns), "-y", std::to_string(rows)});
}

void Tmux::scribble(const std::string &text) const
{
	std::string device = tmux({"display-message", "-p", "#{pane_tty}"});
	device.erase(device.find_last_not_of('\n') + 1);
	std::ofstream(device) << text << std::flush;
}

std::string Tmux::screen() const
{
	return tmux({"capture-pane", "-p"});
}

std::string Tmux::colouredScreen() const
{
	return tmux({"capture-pane", "-p", "-e"});
}

std::string Tmux::state() const
{
	std::string flags =
		tmux({"display-message", "-p", "#{alternate_on} #{cursor_flag} #{keypad_cursor_flag}"});
	flags.erase(flags.find_last_not_of('\n') + 1);
	return flags;
}

std::string Tmux::modes() const
{
	const std::string file = directory / "modes";
	remove(file.c_str());
	enter("clear; stty -g >" + file + ".new; mv " + file + ".new " + file);
	EXPECT_TRUE(support::eventually([&] { return support::exists(file); }));
	return support::readFile(file);
}

bool Tmux::until(const std::string &text, bool there) const
{
	if (support::eventually([&] { return (screen().find(text) != std::string::npos) == there; }))
		return true;
	ADD_FAILURE() << (there ? "does not show: " : "still shows: ") << text << '\n' << screen();
	return false;
}

bool Tmux::shows(const std::string &text) const
{
	return until(text, true);
}

bool Tmux::losesSight(const std::string &text) const
{
	return until(text, false);
}

int Tmux::start(const std::string &command) const
{
	const std::string pidFile = directory / "pid";
	remove(pidFile.c_str());
	std::ofstream(directory / "run") << "echo $$ >" << pidFile << ".new; mv " << pidFile << ".new " << pidFile
									 << "; exec " << command << '\n';
	enter("clear; sh " + directory / "run");
	support::eventually([&] { return !support::readFile(pidFile).empty(); });
	return atoi(support::readFile(pidFile).c_str());
}

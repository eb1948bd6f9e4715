// The console is given back whatever ends the program.

#include "console.h"

#include "kernel.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

using support::TempFolder;

namespace
{

std::unique_ptr<desk::Console> taken(const kernel::Console &console)
{
	std::string error;
	auto held = desk::Console::take(console.path, error);
	EXPECT_TRUE(held) << error;
	return held;
}

bool comesBack(const kernel::Console &console)
{
	for (int i = 0; i < 3000; ++i) {
		if (console.display() == "text" && console.keyboard() == "typing")
			return true;
		std::this_thread::sleep_for(std::chrono::milliseconds(10));
	}
	return false;
}

TEST(Console, is_in_graphics_mode_while_it_is_held)
{
	TempFolder folder;
	const kernel::Console console(folder);
	auto held = taken(console);
	EXPECT_EQ(console.display(), "graphics");
	EXPECT_EQ(console.keyboard(), "off") << "what is pressed must not be typed into a shell";
	held.reset();
	EXPECT_EQ(console.display(), "text");
	EXPECT_EQ(console.keyboard(), "typing");
	EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "nobody is left";
}

TEST(Console, is_given_back_whatever_ends_the_program)
{
	const std::pair<const char *, std::function<void()>> ends[] = {
		{"exit", [] { _exit(0); }},
		{"SIGKILL", [] { raise(SIGKILL); }},
		{"SIGKILL of its group", [] { kill(0, SIGKILL); }},
		{"SIGTERM of its group", [] { kill(0, SIGTERM); }},
		{"abort", [] { abort(); }},
		{"SIGHUP", [] { raise(SIGHUP); }},
	};
	for (const auto &[name, end] : ends) {
		TempFolder folder;
		const kernel::Console console(folder);
		int ready[2];
		ASSERT_EQ(pipe(ready), 0);
		const pid_t child = fork();
		if (child == 0) {
			setpgid(0, 0);
			const auto held = taken(console);
			const bool graphics = console.display() == "graphics" && console.keyboard() == "off";
			if (write(ready[1], graphics ? "g" : "t", 1) != 1)
				_exit(1);
			end();
			_exit(1);
		}
		close(ready[1]);
		char was = 0;
		EXPECT_EQ(read(ready[0], &was, 1), 1);
		EXPECT_EQ(was, 'g') << name;
		close(ready[0]);
		waitpid(child, nullptr, 0);
		EXPECT_TRUE(comesBack(console)) << name;
	}
}

TEST(Console, is_given_back_although_it_has_hung_up)
{
	TempFolder folder;
	const kernel::Console console(folder);
	auto held = taken(console);
	console.hangUp();
	held.reset();
	EXPECT_EQ(console.display(), "text");
	EXPECT_EQ(console.keyboard(), "typing");
}

TEST(Console, is_given_back_from_within_the_session_that_owns_it)
{
	TempFolder folder;
	const kernel::Console console(folder);
	const auto held = taken(console);
	const std::string children = support::readFile("/proc/thread-self/children");
	const pid_t watcher = std::stoi(children);
	EXPECT_EQ(getsid(watcher), getsid(0));
	EXPECT_NE(getpgid(watcher), getpgid(0));
}

TEST(Console, is_no_matter_where_there_is_none)
{
	TempFolder folder;
	std::string error;
	EXPECT_FALSE(desk::Console::take(folder / "missing", error));
	EXPECT_EQ(error, "");
	EXPECT_FALSE(desk::Console::take(folder.write("file", "text"), error));
	EXPECT_EQ(error, "");
}

} // namespace

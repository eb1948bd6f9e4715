// A plugin that fails in many ways. The digit of a menu entry chooses one:
//
//   1 a wild pointer   3 exit(0)    5 an exception that nobody catches   7 spins, whatever signals come
//   2 abort            4 _exit(7)   6 a full stack                       8 says something, and leaves its folder
//   9 goes on as two
#include "toolkit.h"

#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace
{

int fillStack(volatile unsigned *depth)
{
	volatile char here[4096];
	here[0] = 1;
	return ++*depth ? fillStack(depth) + here[0] : 0;
}

class Menu : public eSetupWindow
{
public:
	Menu() : eSetupWindow("Ways to end", 9, 300)
	{
		add("wild pointer", &Menu::wildPointer);
		add("abort", &Menu::abort);
		add("exit", &Menu::exit);
		add("_exit", &Menu::endAtOnce);
		add("exception", &Menu::exception);
		add("full stack", &Menu::fullStack);
		add("spins", &Menu::spin);
		add("prints", &Menu::print);
		add("forks", &Menu::goOnAsTwo);
	}

private:
	void add(const char *name, void (Menu::*operation)())
	{
		eListBoxEntryMenu *entry = new eListBoxEntryMenu(&list, name);
		entry->selected.connect(SigC::slot(*this, operation));
	}

	__attribute__((noinline)) void wildPointer()
	{
		setText("about to crash");
		// Not null, which a sanitizer handles in its own way.
		volatile uintptr_t nothing = 64;
		*reinterpret_cast<volatile int *>(nothing) = 1;
	}
	void abort()
	{
		setText("about to abort");
		std::abort();
	}
	void exit() { std::exit(0); }
	void endAtOnce() { _exit(7); }
	void exception() { throw std::runtime_error("nothing fits"); }
	void fullStack()
	{
		volatile unsigned depth = 0;
		printf("%d", fillStack(&depth));
	}
	void spin()
	{
		sigset_t all;
		sigfillset(&all);
		sigprocmask(SIG_BLOCK, &all, nullptr);
		for (volatile unsigned i = 0;;)
			i = i + 1;
	}
	void print()
	{
		printf("printed by the plugin\n");
		system("echo printed by a command");
		if (chdir("/") != 0)
			std::abort();
	}
	void goOnAsTwo()
	{
		int ends[2];
		char byte = 0;
		if (pipe(ends) != 0)
			std::abort();
		if (fork() == 0) {
			fprintf(stderr, "copy %d\n", static_cast<int>(getpid()));
			eDebug("not by the plugin");
			close(ends[1]);
			return;
		}
		close(ends[1]);
		if (read(ends[0], &byte, 1) != 0) // waits until the copy closes the pipe
			std::abort();
		close(ends[0]);
	}
};

} // namespace

/// A function of C, and the mangled name of a type.
extern "C" __attribute__((noinline)) void c()
{
	std::abort();
}

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	if (const char *runs = std::getenv("RUNS_BEFORE_ABORT")) {
		if (std::atoi(runs) == 0)
			c();
		setenv("RUNS_BEFORE_ABORT", std::to_string(std::atoi(runs) - 1).c_str(), 1);
	}
	Menu menu;
	menu.show();
	return menu.exec();
}

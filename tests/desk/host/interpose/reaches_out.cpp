// A plugin that tries to reach out of its sandbox. REACH names the way, ON its target.
#include "toolkit.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace
{

void show(const char *what, FILE *stream)
{
	char line[80] = "";
	if (!stream)
		eDebug("%s: null", what);
	else if (fgets(line, sizeof line, stream))
		eDebug("%s: %s", what, line);
	else
		eDebug("%s: empty", what);
}

const char *killed = ""; // the process to kill, for functions without arguments

struct AtTheEnd
{
	~AtTheEnd()
	{
		if (*killed)
			kill(atoi(killed), SIGKILL);
	}
} atTheEnd;

/// Kills while the host paints.
class Painted : public eWindow
{
public:
	explicit Painted(const char *process) : whom(process) {}

private:
	void redrawWidget(gPainter *target, const eRect &area) override
	{
		eWindow::redrawWidget(target, area);
		kill(atoi(whom), SIGKILL);
	}

	const char *whom;
};

/// Runs before plugin_exec.
struct AtTheStart
{
	AtTheStart()
	{
		const char *how = getenv("REACH");
		if (how && !strcmp(how, "early"))
			remove(getenv("ON"));
	}
} atTheStart;

/// Ways that only the kernel can stop.
void reachFarther(const char *how, const char *on)
{
	if (!strcmp(how, "thread"))
		std::thread([on] { eDebug("kill: %d", kill(atoi(on), SIGKILL)); }).join();
	if (!strcmp(how, "thread run"))
		std::thread([on] { eDebug("system: %d", system(on)); }).join();
	if (!strcmp(how, "handler")) {
		killed = on;
		signal(SIGUSR1, [](int) { kill(atoi(killed), SIGKILL); });
		raise(SIGUSR1);
		killed = "";
	}
	if (!strcmp(how, "destructor"))
		killed = on;
	if (!strcmp(how, "painting")) {
		Painted window(on);
		window.move(ePoint(100, 100));
		window.resize(eSize(200, 100));
		window.show();
		window.exec();
		window.hide();
	}
	if (!strcmp(how, "killpg"))
		eDebug("killpg: %d", killpg(atoi(on), SIGKILL));
	if (!strcmp(how, "sigqueue"))
		eDebug("sigqueue: %d", sigqueue(atoi(on), SIGKILL, {}));
	if (!strcmp(how, "syscall"))
		eDebug("syscall: %ld", syscall(SYS_kill, atoi(on), SIGKILL));
	if (!strcmp(how, "spawn")) {
		char shell[] = "sh", option[] = "-c", *words[] = {shell, option, const_cast<char *>(on), nullptr};
		pid_t child = 0;
		posix_spawn(&child, "/bin/sh", nullptr, nullptr, words, environ);
		waitpid(child, nullptr, 0);
	}
	if (!strcmp(how, "chdir"))
		eDebug("remove: %d", chdir("/var") == 0 ? remove(on) : 1);
	if (!strcmp(how, "rename")) {
		if (FILE *file = fopen("/var/scaning.new", "w")) {
			fputs("saved", file);
			fclose(file);
		}
		eDebug("rename: %d", rename("/var/scaning.new", on));
	}
	if (!strcmp(how, "folders")) {
		const int made = mkdir(on, 0777);
		const int there = access(on, W_OK);
		eDebug("folders: %d %d %d", made, there, rmdir(on));
	}
	if (!strcmp(how, "truncate"))
		eDebug("truncate: %d", truncate(on, 0));
	if (!strcmp(how, "unlinkat"))
		eDebug("unlinkat: %d", unlinkat(AT_FDCWD, on, 0));
	if (!strcmp(how, "freopen"))
		eDebug("freopen: %d", freopen(on, "w", stdin) ? 0 : -1);
	if (!strcmp(how, "open"))
		eDebug("open: %d", open(on, O_WRONLY | O_TRUNC | O_CREAT, 0666) < 0 ? -1 : 0);
}

void reach(const char *how, const char *on)
{
	reachFarther(how, on);
	if (!strcmp(how, "signal"))
		eDebug("kill: %d", kill(atoi(on), SIGKILL));
	if (!strcmp(how, "unlink"))
		eDebug("unlink: %d", unlink(on));
	if (!strcmp(how, "remove"))
		eDebug("remove: %d", remove(on));
	if (!strcmp(how, "read")) {
		FILE *file = fopen(on, "r");
		show("fopen", file);
		if (file)
			fclose(file);
	}
	if (!strcmp(how, "write")) {
		if (FILE *file = fopen(on, "w")) {
			fputs("written", file);
			fclose(file);
		}
	}
	if (!strcmp(how, "run"))
		eDebug("system: %d", system(on));
	if (!strcmp(how, "shell"))
		eDebug("system: %d", system(nullptr) != 0);
	if (!strcmp(how, "pipe")) {
		FILE *stream = popen(on, "r");
		show("popen", stream);
		eDebug("pclose: %d", pclose(stream));
	}
	if (!strcmp(how, "feed")) {
		FILE *stream = popen(on, "w");
		fputs("fed\n", stream);
		eDebug("pclose: %d", pclose(stream));
	}
}

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	reach(getenv("REACH"), getenv("ON"));
	return 0;
}

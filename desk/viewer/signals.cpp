#include "signals.h"

#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>

namespace desk
{

namespace
{

constexpr int ends[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

bool isIgnored(int signal)
{
	struct sigaction action = {};
	return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// Orphans become children of this process.
void endDescendants()
{
	for (const int signal : {SIGTERM, SIGKILL})
		for (int tries = 0; tries < 20; ++tries) {
			std::ifstream children("/proc/thread-self/children");
			pid_t process = 0;
			if (!(children >> process))
				return;
			do
				kill(process, signal);
			while (children >> process);
			usleep(10000);
			while (waitpid(-1, nullptr, WNOHANG) > 0) {
			}
		}
}

} // namespace

Signals::Signals()
{
	prctl(PR_SET_CHILD_SUBREAPER, 1);
	std::signal(SIGCHLD, SIG_DFL); // ignored, there would be nothing to wait for
	std::signal(SIGPIPE, SIG_IGN); // the other half may end at any time
	sigset_t set;
	sigemptyset(&set);
	for (const int signal : {SIGCHLD, SIGWINCH, SIGCONT})
		sigaddset(&set, signal);
	for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP})
		if (!isIgnored(signal)) // by nohup, or in a script's background
			sigaddset(&set, signal);
	sigprocmask(SIG_BLOCK, &set, nullptr);
	file = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
}

Signals::~Signals()
{
	close(file);
}

std::optional<int> Signals::take()
{
	signalfd_siginfo info;
	if (read(file, &info, sizeof info) != static_cast<ssize_t>(sizeof info))
		return std::nullopt;
	return static_cast<int>(info.ssi_signo);
}

bool Signals::isEnd(int signal)
{
	for (const int end : ends)
		if (signal == end)
			return true;
	return false;
}

void endBy(int signal)
{
	endDescendants();
	const rlimit none = {0, 0};
	setrlimit(RLIMIT_CORE, &none); // nothing has failed
	std::signal(signal, SIG_DFL);
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, signal);
	raise(signal);
	sigprocmask(SIG_UNBLOCK, &set, nullptr);
	_exit(128 + signal);
}

} // namespace desk

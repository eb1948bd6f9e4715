#include "signals.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <fstream>

namespace desk
{

namespace
{

constexpr int ends[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

constexpr unsigned patience = 2, patienceOnceTaken = 5; // seconds

volatile std::sig_atomic_t toLoop = -1; ///< writing end of the loop's pipe
volatile std::sig_atomic_t ending = 0;  ///< the last signal that asks for the end ...
volatile std::sig_atomic_t isTaken = 1; ///< ... and whether the loop has taken it

void come(int signal)
{
	const int reason = errno;
	const auto byte = static_cast<char>(signal);
	if (Signals::isEnd(signal)) {
		ending = signal;
		isTaken = 0;
		alarm(patience);
	}
	[[maybe_unused]] const ssize_t written = write(toLoop, &byte, 1);
	errno = reason;
}

void endAtLast(int)
{
	std::signal(ending, SIG_DFL);
	raise(ending);
}

/// Leaves a signal ignored by nohup or a background job, except SIGCHLD and SIGALRM.
void handle(int signal, void (*by)(int))
{
	struct sigaction action = {};
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, signal);
	sigprocmask(SIG_UNBLOCK, &set, nullptr); // may be inherited as blocked
	if (signal != SIGCHLD && signal != SIGALRM && sigaction(signal, nullptr, &action) == 0 &&
	    action.sa_handler == SIG_IGN)
		return;
	action = {};
	action.sa_handler = by;
	action.sa_flags = SA_RESTART;
	sigaction(signal, &action, nullptr);
}

} // namespace

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

Signals::Signals()
{
	prctl(PR_SET_CHILD_SUBREAPER, 1);
	std::signal(SIGPIPE, SIG_IGN); // the other half may end at any time
	std::signal(SIGXFSZ, SIG_IGN); // write() then fails with EFBIG
	if (pipe2(pipe, O_CLOEXEC | O_NONBLOCK) == 0)
		toLoop = pipe[1];
	handle(SIGALRM, endAtLast);
	for (const int signal : {SIGCHLD, SIGWINCH, SIGCONT, SIGTSTP})
		handle(signal, come);
	for (const int signal : ends)
		handle(signal, come);
}

Signals::~Signals()
{
	toLoop = -1;
	for (const int end : pipe)
		close(end);
}

std::optional<int> Signals::take()
{
	if (!isTaken) {
		isTaken = 1;
		alarm(patienceOnceTaken);
		return ending;
	}
	for (char signal = 0; read(pipe[0], &signal, 1) == 1;)
		if (!isEnd(signal))
			return signal;
	return std::nullopt;
}

bool Signals::isEnd(int signal)
{
	for (const int end : ends)
		if (signal == end)
			return true;
	return false;
}

EndsAtOnce::EndsAtOnce()
{
	for (const int signal : ends)
		handle(signal, SIG_DFL);
}

EndsAtOnce::~EndsAtOnce()
{
	for (const int signal : ends)
		handle(signal, come);
}

void endBy(int signal)
{
	endDescendants();
	const rlimit none = {0, 0};
	setrlimit(RLIMIT_CORE, &none); // no core dump: this is no failure
	std::signal(signal, SIG_DFL);
	raise(signal);
	_exit(128 + signal);
}

} // namespace desk

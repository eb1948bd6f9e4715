#include "supervisor.h"

#include "visible_text.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/signalfd.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <fstream>
#include <langinfo.h>
#include <optional>
#include <tuple>

namespace desk
{
namespace
{

using Clock = std::chrono::steady_clock;

constexpr auto grace = std::chrono::seconds(1);
constexpr size_t mostLines = 1000;
constexpr size_t mostLineBytes = 4096;

/// The terminal as the child took it, in memory that both processes see: it is there however the child ends.
struct TerminalState
{
	bool taken;
	termios modes; ///< of the terminal before that
	size_t size;   ///< of `leave`
	char leave[500];
};

TerminalState *terminalState; // null: nobody watches
int outputPipe = -1;          // what is written to it, the parent keeps

bool isDebugged()
{
	std::ifstream status("/proc/self/status");
	for (std::string word; status >> word;)
		if (word == "TracerPid:") {
			int tracer = 0;
			status >> tracer;
			return tracer != 0;
		}
	return false;
}

bool isIgnored(int signal)
{
	struct sigaction action = {};
	return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

/// The signals that somebody may send to this process. Not those that say that this process itself has failed.
sigset_t watchedSignals()
{
	sigset_t set;
	sigfillset(&set);
	for (const int own : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS})
		sigdelset(&set, own);
	for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM})
		if (isIgnored(signal)) // by nohup, or in a script's background
			sigdelset(&set, signal);
	return set;
}

bool ends(int signal)
{
	return signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT;
}

[[noreturn]] void endBy(int signal)
{
	// The child has left a core if one was wanted.
	const rlimit none = {0, 0};
	setrlimit(RLIMIT_CORE, &none);
	prctl(PR_SET_DUMPABLE, 0);
	std::signal(signal, SIG_DFL);
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, signal);
	raise(signal);
	sigprocmask(SIG_UNBLOCK, &set, nullptr);
	_exit(128 + signal);
}

/// The last lines of what the child and its commands have written.
class Output
{
public:
	void add(const char *bytes, size_t count)
	{
		for (const char *at = bytes; at != bytes + count; ++at) {
			if (*at == '\n')
				endLine();
			else if (line.size() < mostLineBytes)
				line += *at;
			else
				cut = true;
		}
	}

	void show(int to)
	{
		if (!line.empty())
			endLine();
		if (lost > 0)
			write(to, "deskhost: earlier lines left out: " + std::to_string(lost));
		for (const std::string &each : lines)
			write(to, visibleText(each));
	}

private:
	void endLine()
	{
		lines.push_back(line + (cut ? " ..." : ""));
		line.clear();
		cut = false;
		if (lines.size() <= mostLines)
			return;
		lines.pop_front();
		++lost;
	}

	void write(int to, std::string text)
	{
		text += '\n';
		for (size_t done = 0; done < text.size();) {
			const ssize_t n = ::write(to, text.data() + done, text.size() - done);
			if (n <= 0)
				return;
			done += static_cast<size_t>(n);
		}
	}

	std::deque<std::string> lines;
	std::string line;
	bool cut = false;
	size_t lost = 0;
};

class Supervisor
{
public:
	Supervisor(pid_t process, int outputEnd, const sigset_t &watched, const TerminalState &state)
		: child(process), output(outputEnd), terminal(state),
		  signals(signalfd(-1, &watched, SFD_CLOEXEC | SFD_NONBLOCK))
	{}

	/// Watches until the child has ended. Returns its exit status or ends this process by a signal.
	int watch()
	{
		while (!status) {
			pollfd waits[] = {{signals, POLLIN, 0}, {output, POLLIN, 0}};
			poll(waits, 2, patience());
			if (waits[1].revents)
				read();
			if (waits[0].revents)
				handleSignals();
			if (deadline && Clock::now() >= *deadline) {
				kill(child, SIGKILL);
				deadline = Clock::now() + grace;
			}
		}
		// No more than a pipe holds: somebody who is left may write for ever.
		for (int pieces = 0; pieces < 64 && read(); ++pieces) {
		}
		giveTerminalBack();
		if (ending) {
			endDescendants();
			endBy(ending);
		}
		if (WIFSIGNALED(*status)) {
			// A desktop starts programs where nobody says so.
			std::fprintf(stderr,
			             "deskhost: ended by signal %d, %s; --trace FILE shows the plugin's last calls\n",
			             WTERMSIG(*status), strsignal(WTERMSIG(*status)));
			endBy(WTERMSIG(*status));
		}
		return WEXITSTATUS(*status);
	}

private:
	int patience() const
	{
		if (!deadline)
			return -1;
		const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(*deadline - Clock::now());
		return std::max(0, static_cast<int>(left.count()) + 1);
	}

	bool read()
	{
		char bytes[4096];
		const ssize_t n = ::read(output, bytes, sizeof bytes);
		if (n > 0)
			kept.add(bytes, static_cast<size_t>(n));
		else if (n == 0)
			output = -1; // everybody has closed it
		return n > 0;
	}

	void handleSignals()
	{
		signalfd_siginfo info;
		while (::read(signals, &info, sizeof info) == static_cast<ssize_t>(sizeof info)) {
			const int signal = static_cast<int>(info.ssi_signo);
			if (signal == SIGCHLD) {
				reap();
				continue;
			}
			// What the terminal sends, such as Ctrl-C, the child has got itself.
			if (info.ssi_code <= 0)
				kill(child, signal);
			if (ends(signal) && !ending) {
				ending = signal;
				deadline = Clock::now() + grace;
			}
		}
	}

	void reap()
	{
		int how = 0;
		for (pid_t process; (process = waitpid(-1, &how, WNOHANG | WUNTRACED)) > 0;) {
			if (process != child)
				continue; // an orphan that has become ours
			if (!WIFSTOPPED(how)) {
				status = how;
				return;
			}
			// The shell sees this process stop; its SIGCONT is for both.
			raise(SIGSTOP);
			kill(child, SIGCONT);
		}
	}

	void giveTerminalBack()
	{
		// In the background the terminal is somebody else's.
		const pid_t foreground = tcgetpgrp(STDIN_FILENO);
		if (terminal.taken && (foreground < 0 || foreground == getpgrp())) {
			std::ignore = ::write(STDOUT_FILENO, terminal.leave, terminal.size);
			tcsetattr(STDIN_FILENO, TCSANOW, &terminal.modes);
		}
		std::setlocale(LC_CTYPE, "");
		kept.show(isatty(STDERR_FILENO) ? STDERR_FILENO : STDOUT_FILENO);
	}

	/// Ends what the child has left behind: orphans become children of this process.
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

	const pid_t child;
	int output; ///< what it writes; -1: nobody can any more
	const TerminalState &terminal;
	const int signals;
	Output kept;
	int ending = 0; ///< the signal that is to end all
	std::optional<Clock::time_point> deadline;
	std::optional<int> status;
};

} // namespace

int supervise(const std::function<int()> &work)
{
	int ends[2];
	void *shared =
		mmap(nullptr, sizeof(TerminalState), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
	if (isDebugged() || shared == MAP_FAILED || pipe2(ends, O_CLOEXEC) != 0)
		return work();

	std::signal(SIGCHLD, SIG_DFL); // ignored, there would be nothing to wait for
	const sigset_t watched = watchedSignals();
	sigset_t before;
	sigprocmask(SIG_BLOCK, &watched, &before);
	const pid_t parent = getpid();
	const pid_t child = fork();
	if (child <= 0) {
		sigprocmask(SIG_SETMASK, &before, nullptr);
		close(ends[0]);
		if (child == 0) {
			// Without its parent nobody would end it.
			prctl(PR_SET_PDEATHSIG, SIGTERM);
			if (getppid() != parent)
				_exit(1);
			terminalState = static_cast<TerminalState *>(shared);
			outputPipe = ends[1];
		}
		return work();
	}

	close(ends[1]);
	fcntl(ends[0], F_SETFL, O_NONBLOCK);
	prctl(PR_SET_CHILD_SUBREAPER, 1);
	return Supervisor(child, ends[0], watched, *static_cast<TerminalState *>(shared)).watch();
}

TakenTerminal takeTerminal()
{
	static std::optional<TakenTerminal> terminal;
	if (terminal)
		return *terminal;
	terminal = {fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3), fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3)};
	if (!terminalState)
		return *terminal;
	terminalState->taken = tcgetattr(STDIN_FILENO, &terminalState->modes) == 0;
	std::fflush(nullptr);
	for (const int stream : {STDOUT_FILENO, STDERR_FILENO})
		if (isatty(stream))
			dup2(outputPipe, stream);
	std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ); // as on a terminal: a crash loses no line
	// Commands are not to eat the viewer's keys.
	const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
	if (nothing >= 0 && isatty(STDIN_FILENO))
		dup2(nothing, STDIN_FILENO);
	close(nothing);
	return *terminal;
}

void leaveTerminalBy(const std::string &bytes)
{
	if (terminalState)
		terminalState->size = bytes.copy(terminalState->leave, sizeof terminalState->leave);
}

} // namespace desk

#include "terminal_hold.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

namespace desk
{
namespace
{

constexpr size_t mostLines = 1000;
constexpr size_t mostLineBytes = 4096;

/// Bytes that a signal handler can write.
template <size_t size> struct Bytes
{
	char data[size];
	size_t used;

	void set(const std::string &text)
	{
		used = std::min(text.size(), size);
		memcpy(data, text.data(), used);
	}
	void write(int to) const
	{
		for (size_t done = 0; done < used;) {
			const ssize_t n = ::write(to, data + done, used - done);
			if (n > 0)
				done += static_cast<size_t>(n);
			else if (n < 0 && errno == EAGAIN) {
				pollfd ready{to, POLLOUT, 0};
				if (poll(&ready, 1, 1000) <= 0)
					return;
			} else if (n == 0 || errno != EINTR)
				return;
		}
	}
};

// What the signal handlers need: plain storage, ready before they are installed.
volatile sig_atomic_t held, resized, continued;
termios before, during;
Bytes<1000> entering, leaving;
Bytes<256 * 1024> notes;
Bytes<100> lostNotes;
size_t noteLines, notesLost;

constexpr int ending[] = {SIGHUP,  SIGINT,  SIGQUIT, SIGTERM, SIGPIPE, SIGUSR1, SIGUSR2,
                          SIGXCPU, SIGSEGV, SIGBUS,  SIGFPE,  SIGILL,  SIGABRT, SIGSYS};
constexpr int living[] = {SIGTSTP, SIGCONT, SIGWINCH};
struct sigaction previous[NSIG];
alignas(16) char crashStack[64 * 1024];
stack_t previousStack;

// While it lives, no handler runs.
class NoSignals
{
public:
	NoSignals()
	{
		sigset_t all;
		sigfillset(&all);
		for (const int crash : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGSYS})
			sigdelset(&all, crash);
		sigprocmask(SIG_BLOCK, &all, &old);
	}
	~NoSignals() { sigprocmask(SIG_SETMASK, &old, nullptr); }
	NoSignals(const NoSignals &) = delete;
	NoSignals &operator=(const NoSignals &) = delete;

private:
	sigset_t old;
};

void leave()
{
	leaving.write(STDOUT_FILENO);
	tcsetattr(STDOUT_FILENO, TCSANOW, &before);
}

void enter()
{
	// First the mode: in the background this waits, before anything is written over the shell.
	tcsetattr(STDOUT_FILENO, TCSANOW, &during);
	entering.write(STDOUT_FILENO);
}

void giveBack()
{
	if (!held)
		return;
	leave();
	lostNotes.write(STDERR_FILENO);
	notes.write(STDERR_FILENO);
	held = 0;
}

void giveBackAtExit()
{
	const NoSignals quiet;
	giveBack();
}

void onEnding(int signal, siginfo_t *info, void *)
{
	giveBack();
	sigaction(signal, &previous[signal], nullptr);
	// A fault happens again on return, and is then dealt with as if nobody had looked.
	const bool fault = signal == SIGSEGV || signal == SIGBUS || signal == SIGFPE || signal == SIGILL;
	if (!fault || info->si_code <= 0)
		raise(signal);
}

void onStop(int)
{
	const int error = errno;
	leave();
	struct sigaction mine;
	struct sigaction standard = {};
	standard.sa_handler = SIG_DFL;
	sigaction(SIGTSTP, &standard, &mine);
	sigset_t stop;
	sigemptyset(&stop);
	sigaddset(&stop, SIGTSTP);
	raise(SIGTSTP);
	sigprocmask(SIG_UNBLOCK, &stop, nullptr); // here it stands still; SIGCONT enters again
	sigaction(SIGTSTP, &mine, nullptr);
	errno = error;
}

void onContinue(int)
{
	const int error = errno;
	enter();
	continued = 1;
	errno = error;
}

bool somethingToRead()
{
	int bytes = 0;
	return ioctl(STDIN_FILENO, FIONREAD, &bytes) == 0 && bytes > 0;
}

void onResize(int)
{
	resized = 1;
}

void watch(int signal, struct sigaction action)
{
	sigaction(signal, nullptr, &previous[signal]);
	const bool ignored = !(previous[signal].sa_flags & SA_SIGINFO) && previous[signal].sa_handler == SIG_IGN;
	if (!ignored)
		sigaction(signal, &action, nullptr);
}

} // namespace

TerminalHold::TerminalHold(const std::string &enterText, const std::string &leaveText)
	: wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
	static bool registered = false;
	if (!registered)
		atexit(giveBackAtExit);
	registered = true;

	entering.set(enterText);
	leaving.set(leaveText);
	notes.used = lostNotes.used = noteLines = notesLost = 0;
	resized = continued = 0;
	tcgetattr(STDOUT_FILENO, &before);
	during = before;
	held = 1;

	// A crash may be a stack that is full.
	stack_t stack = {};
	stack.ss_sp = crashStack;
	stack.ss_size = sizeof crashStack;
	sigaltstack(nullptr, &previousStack);
	if (previousStack.ss_flags & SS_DISABLE)
		sigaltstack(&stack, nullptr);

	struct sigaction action = {};
	sigfillset(&action.sa_mask);
	action.sa_flags = SA_SIGINFO | SA_ONSTACK;
	action.sa_sigaction = onEnding;
	for (const int signal : ending)
		watch(signal, action);
	action.sa_flags = SA_RESTART;
	sigdelset(&action.sa_mask, SIGCONT);
	action.sa_handler = onStop;
	watch(SIGTSTP, action);
	action.sa_handler = onContinue;
	watch(SIGCONT, action);
	action.sa_handler = onResize;
	watch(SIGWINCH, action);
}

TerminalHold::~TerminalHold()
{
	const NoSignals quiet;
	giveBack();
	close(wakeUp);
	for (const int signal : ending)
		sigaction(signal, &previous[signal], nullptr);
	for (const int signal : living)
		sigaction(signal, &previous[signal], nullptr);
	if (previousStack.ss_flags & SS_DISABLE)
		sigaltstack(&previousStack, nullptr);
}

void TerminalHold::modeIsSet()
{
	const NoSignals quiet;
	tcgetattr(STDOUT_FILENO, &during);
}

void TerminalHold::setLeave(const std::string &leaveText)
{
	const NoSignals quiet;
	leaving.set(leaveText);
}

void TerminalHold::keep(const std::string &line)
{
	std::string kept = line.substr(0, mostLineBytes);
	if (kept.size() < line.size())
		kept += " ...";
	kept += '\n';

	const NoSignals quiet;
	while (noteLines == mostLines || notes.used + kept.size() > sizeof notes.data) {
		const char *end = static_cast<const char *>(memchr(notes.data, '\n', notes.used));
		const size_t first = static_cast<size_t>(end - notes.data) + 1;
		notes.used -= first;
		memmove(notes.data, notes.data + first, notes.used);
		--noteLines;
		char text[sizeof lostNotes.data];
		snprintf(text, sizeof text, "deskhost: earlier lines left out: %zu\n", ++notesLost);
		lostNotes.set(text);
	}
	memcpy(notes.data + notes.used, kept.data(), kept.size());
	notes.used += kept.size();
	++noteLines;
}

void TerminalHold::wake()
{
	eventfd_write(wakeUp, 1);
}

TerminalHold::Wake TerminalHold::wait()
{
	// Blocked but for the sleep itself, so that none comes between the look and the sleep.
	sigset_t watched, old;
	sigemptyset(&watched);
	for (const int signal : living)
		sigaddset(&watched, signal);
	sigprocmask(SIG_BLOCK, &watched, &old);
	Wake wake = Wake::input;
	for (;;) {
		if (continued) {
			continued = 0;
			wake = Wake::continued;
			break;
		}
		if (resized) {
			resized = 0;
			wake = Wake::resized;
			break;
		}
		pollfd ends[] = {{STDIN_FILENO, POLLIN, 0}, {wakeUp, POLLIN, 0}};
		pollfd &input = ends[0];
		const int ready = ppoll(ends, 2, nullptr, &old);
		if (ready < 0 && errno == EINTR)
			continue;
		if (eventfd_t wakes; ready > 0 && ends[1].revents && eventfd_read(wakeUp, &wakes) == 0) {
			wake = Wake::woken;
			break;
		}
		// After a stop, what woke this one may have been read by the shell: then there is nothing, but
		// not for ever.
		if (ready > 0 && !(input.revents & POLLHUP) && !somethingToRead() && poll(&input, 1, 0) == 0)
			continue;
		if (ready < 0 || !somethingToRead())
			wake = Wake::closed;
		break;
	}
	sigprocmask(SIG_SETMASK, &old, nullptr);
	return wake;
}

} // namespace desk

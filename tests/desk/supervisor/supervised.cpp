// Work under the supervisor, with neither plugin nor screen:
//
//     supervised exit STATUS     ends with that status
//     supervised raise SIGNAL    ends by that signal
//     supervised report          prints the number of each signal that reaches it; one that asks for its end ends it
//     supervised deaf            no signal ends it but SIGKILL
//     supervised command         any signal ends it, and a command is left running
//     supervised deaf_command    the same, and none ends the command but SIGKILL
//     supervised stop            stops itself, and says when it goes on
//
// From `report` on, the process id is printed first, of the command where there is one. Nothing outlives the
// reader of what it prints.

#include "supervisor.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <string>

namespace
{

constexpr int endings[] = {SIGHUP, SIGINT, SIGQUIT, SIGTERM};

void print(const std::string &line)
{
	const std::string bytes = line + '\n';
	if (write(STDOUT_FILENO, bytes.data(), bytes.size()) < 0)
		_exit(1);
}

/// Sleeps until nobody reads any more.
int sleepWhileRead()
{
	pollfd output = {STDOUT_FILENO, 0, 0};
	while (poll(&output, 1, -1) < 0) {
	}
	return 0;
}

int goOn()
{
	print(std::to_string(getpid()));
	return sleepWhileRead();
}

int reportSignals()
{
	sigset_t all;
	sigfillset(&all);
	sigprocmask(SIG_BLOCK, &all, nullptr);
	const int signals = signalfd(-1, &all, SFD_CLOEXEC);
	print(std::to_string(getpid()));
	pollfd waits[] = {{signals, POLLIN, 0}, {STDOUT_FILENO, 0, 0}};
	while (poll(waits, 2, -1) > 0 && !waits[1].revents) {
		signalfd_siginfo info;
		if (read(signals, &info, sizeof info) < 0)
			break;
		print(std::to_string(info.ssi_signo));
		for (const int ending : endings)
			if (info.ssi_signo == static_cast<uint32_t>(ending))
				return 0;
	}
	return 1;
}

int ignoreSignals()
{
	for (const int ending : endings)
		std::signal(ending, SIG_IGN);
	return goOn();
}

int leaveRunning(int (*command)())
{
	if (fork() == 0)
		_exit(command());
	return sleepWhileRead();
}

int stopAndGoOn()
{
	print(std::to_string(getpid()));
	raise(SIGSTOP);
	print("goes on");
	return sleepWhileRead();
}

int work(const std::string &what, int number)
{
	if (what == "report")
		return reportSignals();
	if (what == "deaf")
		return ignoreSignals();
	if (what == "command")
		return leaveRunning(goOn);
	if (what == "deaf_command")
		return leaveRunning(ignoreSignals);
	if (what == "stop")
		return stopAndGoOn();
	if (what == "raise")
		raise(number);
	return number;
}

} // namespace

int main(int argc, char **argv)
{
	const std::string what = argc > 1 ? argv[1] : "";
	const int number = argc > 2 ? std::atoi(argv[2]) : 0;
	return desk::supervise([&] { return work(what, number); });
}

#include "other_half.h"

#include "desk_error.h"
#include "signals.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>

namespace desk
{

std::unique_ptr<OtherHalf> OtherHalf::start(const std::string &program, std::vector<std::string> words,
                                            const std::string &through, int errors)
{
	const auto failure = [&](const std::string &why) {
		return Error("cannot start the half that runs the plugin, '" + program + "': " + why,
		             statusNotToItsEnd);
	};
	if (through.empty() && access(program.c_str(), X_OK) != 0)
		throw failure(std::strerror(errno) + std::string("; install deskhost anew"));
	int ends[2];
	if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0)
		throw failure(std::strerror(errno));
	const bool inSandbox = !words.empty();
	if (through.empty())
		words.push_back(program);
	else
		words.insert(words.end(), {"/bin/sh", "-c", "exec " + through + " \"$0\"", program});
	std::vector<char *> arguments;
	for (std::string &word : words)
		arguments.push_back(word.data());
	arguments.push_back(nullptr);
	const pid_t parent = getpid();
	const pid_t child = fork();
	if (child == 0) {
		prctl(PR_SET_PDEATHSIG, SIGTERM); // even if the plugin spins
		if (getppid() != parent)
			_exit(1);
		for (const int stream : {STDIN_FILENO, STDOUT_FILENO})
			dup2(ends[1], stream);
		dup2(errors, STDERR_FILENO);
		for (const int ignored : {SIGPIPE, SIGXFSZ})
			std::signal(ignored, SIG_DFL);
		close_range(STDERR_FILENO + 1, ~0U, CLOSE_RANGE_CLOEXEC); // descriptors that this program inherited
		execvp(arguments[0], arguments.data());
		_exit(127);
	}
	close(ends[1]);
	if (child < 0) {
		close(ends[0]);
		throw failure(std::strerror(errno));
	}
	fcntl(ends[0], F_SETFL, O_NONBLOCK);
	return std::unique_ptr<OtherHalf>(new OtherHalf(child, ends[0], inSandbox));
}

OtherHalf::~OtherHalf()
{
	hangUp();
	kill();
	while (!status) {
		int how = 0;
		if (waitpid(process, &how, 0) == process || errno != EINTR)
			hasEnded(how);
	}
	if (!inSandbox && *status != 0)
		endDescendants();                              // of a --through command, all but its shell may remain
	while (inSandbox && waitpid(-1, nullptr, 0) > 0) { // the sandbox's first process, which ends now
	}
}

void OtherHalf::send(const ToHost &message)
{
	if (!channel)
		return;
	channel->put(encode(message));
	channel->flush();
}

void OtherHalf::flush()
{
	if (channel)
		channel->flush();
}

void OtherHalf::read()
{
	// After the half has ended, reads all that is left.
	while (channel && !silent) {
		const Channel::Came came = channel->read();
		silent = came == Channel::Came::end || (came == Channel::Came::nothing && status);
		if (!status || came == Channel::Came::nothing)
			break;
	}
}

std::optional<ToViewer> OtherHalf::next()
{
	const std::optional<std::string> bytes = channel ? channel->next() : std::nullopt;
	std::optional<ToViewer> message = bytes ? decodeToViewer(*bytes) : std::nullopt;
	broken = broken || (bytes && !message) || (channel && channel->isBroken());
	return message;
}

void OtherHalf::kill()
{
	if (!status)
		::kill(process, SIGKILL);
}

void OtherHalf::reap()
{
	int how = 0;
	if (!status && waitpid(process, &how, WNOHANG) == process)
		hasEnded(how);
}

void OtherHalf::hasEnded(int how)
{
	// Bubblewrap reports a signal like a shell.
	constexpr int signalled = 128;
	const int told = WIFEXITED(how) ? WEXITSTATUS(how) : 0;
	status = inSandbox && told > signalled ? W_EXITCODE(0, told - signalled) : how;
}

void reapOrphans(const OtherHalf *half)
{
	siginfo_t ended = {};
	while (waitid(P_ALL, 0, &ended, WEXITED | WNOHANG | WNOWAIT) == 0 && ended.si_pid != 0 &&
	       (!half || ended.si_pid != half->id() || half->ending())) {
		waitpid(ended.si_pid, nullptr, 0);
		ended = {};
	}
}

} // namespace desk

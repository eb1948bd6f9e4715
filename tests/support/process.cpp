#include "process.h"

#include "temp_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <thread>

namespace support
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds patience(60); // long enough for a busy machine

int statusOf(int waited)
{
	return WIFEXITED(waited) ? WEXITSTATUS(waited) : 128 + WTERMSIG(waited);
}

/// In a child: executes the program.
[[noreturn]] void become(const Command &command, const Environment &environment)
{
	for (const auto &[name, value] : environment) {
		if (value.empty())
			unsetenv(name.c_str());
		else
			setenv(name.c_str(), value.c_str(), 1);
	}
	const Command words = runnable(command);
	std::vector<char *> arguments;
	for (const std::string &word : words)
		arguments.push_back(const_cast<char *>(word.c_str()));
	arguments.push_back(nullptr);
	execvp(arguments[0], arguments.data());
	_exit(127);
}

/// In a child: opens `path` as descriptor `to`.
void redirect(const std::string &path, int flags, int to)
{
	const int file = ::open(path.c_str(), flags, 0644);
	if (file < 0 || dup2(file, to) < 0)
		_exit(126);
}

} // namespace

Command runnable(Command command)
{
#ifdef TEST_EMULATOR
	const auto processorOf = [](const std::string &path) {
		char header[20] = {};
		std::ifstream(path, std::ios::binary).read(header, sizeof header);
		return std::string(header, 4) == "\177ELF" ? std::string(header + 18, 2) : "";
	};
	if (processorOf(command[0]) == processorOf("/proc/self/exe"))
		command.insert(command.begin(), {TEST_EMULATOR});
#endif
	return command;
}

Outcome run(const Command &command, const Environment &environment)
{
	TempFolder folder;
	const std::string out = folder / "out", err = folder / "err";
	const pid_t child = fork();
	if (child == 0) {
		redirect("/dev/null", O_RDONLY, STDIN_FILENO);
		redirect(out, O_WRONLY | O_CREAT, STDOUT_FILENO);
		redirect(err, O_WRONLY | O_CREAT, STDERR_FILENO);
		become(command, environment);
	}
	int status = 0;
	EXPECT_EQ(waitpid(child, &status, 0), child);
	Outcome outcome;
	outcome.status = statusOf(status);
	outcome.out = readFile(out);
	outcome.err = readFile(err);
	return outcome;
}

bool eventually(const std::function<bool()> &holds)
{
	for (const auto end = Clock::now() + patience; Clock::now() < end;) {
		if (holds())
			return true;
		std::this_thread::sleep_for(std::chrono::milliseconds(20));
	}
	return holds();
}

std::vector<pid_t> childrenOf(pid_t process)
{
	const std::string id = std::to_string(process);
	std::istringstream numbers(readFile("/proc/" + id + "/task/" + id + "/children"));
	return {std::istream_iterator<pid_t>(numbers), {}};
}

bool hasEnded(pid_t process)
{
	const std::string stat = readFile("/proc/" + std::to_string(process) + "/stat");
	return stat.empty() || stat[stat.rfind(')') + 2] == 'Z';
}

long cpuOf(pid_t process)
{
	const std::string stat = readFile("/proc/" + std::to_string(process) + "/stat");
	std::istringstream fields(stat.substr(stat.rfind(')') + 2));
	std::string skipped;
	for (int i = 0; i < 11; ++i)
		fields >> skipped;
	long user = 0, system = 0;
	fields >> user >> system;
	return user + system;
}

void Child::start(const Command &command, const Environment &environment, int output)
{
	int ends[2];
	ASSERT_EQ(pipe2(ends, O_CLOEXEC), 0);
	id = fork();
	ASSERT_GE(id, 0);
	if (id == 0) {
		prctl(PR_SET_PDEATHSIG, SIGKILL);
		if (ends[1] == output)
			fcntl(output, F_SETFD, 0);
		else
			dup2(ends[1], output);
		become(command, environment);
	}
	close(ends[1]);
	out = ends[0];
}

void Child::end()
{
	if (id > 0) {
		kill(id, SIGKILL);
		waitpid(id, nullptr, 0);
	}
	if (out >= 0)
		close(out);
	id = out = -1;
	buffer.clear();
}

bool Child::lives() const
{
	siginfo_t state = {};
	return id > 0 && waitid(P_PID, static_cast<id_t>(id), &state, WEXITED | WNOHANG | WNOWAIT) == 0 &&
	       state.si_pid == 0;
}

void Child::signal(int number) const
{
	ASSERT_GT(id, 0) << "it was not started"; // kill(-1) would signal every process
	kill(id, number);
}

int Child::exitStatus()
{
	int status = -1;
	if (!eventually([&] { return waitpid(id, &status, WNOHANG) == id; }))
		return -1;
	id = -1;
	return statusOf(status);
}

std::string Child::line()
{
	for (const auto end = Clock::now() + patience; Clock::now() < end;) {
		const size_t newline = buffer.find('\n');
		if (newline != buffer.npos) {
			const std::string next = buffer.substr(0, newline);
			buffer.erase(0, newline + 1);
			return next;
		}
		pollfd ready = {out, POLLIN, 0};
		char piece[256];
		if (poll(&ready, 1, 200) <= 0)
			continue;
		const ssize_t length = read(out, piece, sizeof piece);
		if (length <= 0)
			break;
		buffer.append(piece, static_cast<size_t>(length));
	}
	return "(nothing)";
}

} // namespace support

// main() of the tests that really kill: they run in a process namespace of their own where one can be
// had, so that no mistake, theirs or the plugin's, reaches another process of this computer.

#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <string>

namespace
{

constexpr int unavailable = 200; // no exit status of tests

bool write(const char *path, const std::string &text)
{
	FILE *file = std::fopen(path, "w");
	return file && std::fputs(text.c_str(), file) >= 0 && std::fclose(file) == 0;
}

/// Makes the next child the first process of a namespace, as the superuser or in a name of its own.
bool leaveProcesses()
{
	if (unshare(CLONE_NEWPID | CLONE_NEWNS) == 0)
		return true;
	const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
	return unshare(CLONE_NEWUSER | CLONE_NEWPID | CLONE_NEWNS) == 0 &&
	       write("/proc/self/setgroups", "deny") && write("/proc/self/uid_map", user + " " + user + " 1") &&
	       write("/proc/self/gid_map", group + " " + group + " 1");
}

/// What `ps` and the test then see are the processes of the namespace.
bool seeOwnProcesses()
{
	return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
	       mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0;
}

/// Waits for a child; its exit status.
int statusOf(pid_t child)
{
	int status = 0;
	if (child < 0 || waitpid(child, &status, 0) != child)
		return unavailable;
	return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

int runApart()
{
	const pid_t child = fork();
	if (child != 0)
		return statusOf(child);
	prctl(PR_SET_PDEATHSIG, SIGKILL);
	if (!leaveProcesses())
		_exit(unavailable);
	const pid_t first = fork();
	if (first != 0)
		_exit(statusOf(first));
	prctl(PR_SET_PDEATHSIG, SIGKILL);
	setsid(); // a process group reaches out of a namespace
	if (!seeOwnProcesses())
		_exit(unavailable);
	std::exit(RUN_ALL_TESTS());
}

} // namespace

int main(int argc, char **argv)
{
	testing::InitGoogleTest(&argc, argv);
	const int status = runApart();
	return status == unavailable ? RUN_ALL_TESTS() : status;
}

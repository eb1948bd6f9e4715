// main() of all tests. Each test program has its own empty /var/tmp, because the plugin's files there have fixed
// names. A mount namespace hides a test's mounts from other processes.

#include "own_processes.h"
#include "process.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

namespace
{

bool ownProcesses = false;

void demand(bool done, const char *what)
{
	if (done)
		return;
	std::fprintf(
		stderr,
		"tests need a /var/tmp of their own, but %s failed (%s): permit user namespaces, or be root; "
		"docs/testing.md says what a container must permit\n",
		what, std::strerror(errno));
	std::exit(EXIT_FAILURE);
}

/// Not a stream: a test may replace fopen().
bool write(const char *path, const std::string &text)
{
	const int file = open(path, O_WRONLY | O_CLOEXEC);
	const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
	close(file);
	return written;
}

/// Runs the program again inside namespaces. Returns only on failure.
void beginInNamespaces(const support::Command &program)
{
	support::Command words = {"unshare", "--map-current-user", "--keep-caps", "--mount"};
	for (const std::string &word : support::runnable(program))
		words.push_back(word);
	std::vector<char *> arguments;
	for (std::string &word : words)
		arguments.push_back(word.data());
	arguments.push_back(nullptr);
	execvp(arguments[0], arguments.data());
}

/// Enters namespaces as the superuser, or with a user namespace that keeps the user's id.
void enterNamespaces(const support::Command &program)
{
	const int namespaces = CLONE_NEWNS | (ownProcesses ? CLONE_NEWPID : 0);
	if (unshare(namespaces) == 0)
		return;
	const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
	if (unshare(CLONE_NEWUSER | namespaces) != 0) {
		// EINVAL: an emulator's threads. Only a single-threaded process can enter a user namespace, so start again
		// there.
		if (errno == EINVAL)
			beginInNamespaces(program);
		demand(false, "entering namespaces");
	}
	demand(write("/proc/self/setgroups", "deny") && write("/proc/self/uid_map", user + " " + user + " 1") &&
	           write("/proc/self/gid_map", group + " " + group + " 1"),
	       "staying this user in a namespace");
}

/// Drops the capabilities of the user namespace, with which a user could open files that he must not.
void dropRights()
{
	__user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
	const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
	demand(geteuid() == 0 || syscall(SYS_capset, &header, none) == 0, "dropping rights");
}

/// Goes on as the first process of the process namespace; the parent passes its status on.
void enterProcesses()
{
	const pid_t first = fork();
	demand(first >= 0, "a first process");
	if (first > 0) {
		int status = 0;
		demand(waitpid(first, &status, 0) == first, "waiting");
		_exit(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status));
	}
	prctl(PR_SET_PDEATHSIG, SIGKILL);
	setsid(); // signals to a process group cross namespaces
	demand(mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) == 0, "mounting /proc");
}

} // namespace

namespace support
{

OwnProcesses::OwnProcesses()
{
	ownProcesses = true;
}

} // namespace support

int main(int argc, char **argv)
{
	const support::Command program(argv, argv + argc);
	testing::InitGoogleTest(&argc, argv);
	if (GTEST_FLAG_GET(list_tests))
		return RUN_ALL_TESTS();

	enterNamespaces(program);
	demand(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "keeping mounts apart");
	demand(mount("tmpfs", "/var/tmp", "tmpfs", MS_NOSUID | MS_NODEV, "mode=1777") == 0, "mounting it");
	if (ownProcesses)
		enterProcesses();
	dropRights();
	return RUN_ALL_TESTS();
}

// main() of all tests. Each has a /var/tmp of its own, empty at first, because the plugin's files there have fixed
// names: a mount namespace is where what a test mounts is seen by it and its children only.

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

/// Not by a stream: a test may have its own fopen().
bool write(const char *path, const std::string &text)
{
	const int file = open(path, O_WRONLY | O_CLOEXEC);
	const bool written = ::write(file, text.data(), text.size()) == static_cast<ssize_t>(text.size());
	close(file);
	return written;
}

/// Runs the program anew. Returns only where that fails.
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

/// As the superuser, or in a user namespace in which this user stays who he is.
void enterNamespaces(const support::Command &program)
{
	const int namespaces = CLONE_NEWNS | (ownProcesses ? CLONE_NEWPID : 0);
	if (unshare(namespaces) == 0)
		return;
	const std::string user = std::to_string(geteuid()), group = std::to_string(getegid());
	if (unshare(CLONE_NEWUSER | namespaces) != 0) {
		// An emulator has threads, and a user namespace is for a process that has none: so it begins there.
		if (errno == EINVAL)
			beginInNamespaces(program);
		demand(false, "entering namespaces");
	}
	demand(write("/proc/self/setgroups", "deny") && write("/proc/self/uid_map", user + " " + user + " 1") &&
	           write("/proc/self/gid_map", group + " " + group + " 1"),
	       "staying this user in a namespace");
}

/// What a user could do with the rights of his namespace, such as open what nobody may.
void dropRights()
{
	__user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
	const __user_cap_data_struct none[_LINUX_CAPABILITY_U32S_3] = {};
	demand(geteuid() == 0 || syscall(SYS_capset, &header, none) == 0, "dropping rights");
}

/// Goes on as the first process of the namespace; this one hands its status on.
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
	setsid(); // a process group reaches out of a namespace
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

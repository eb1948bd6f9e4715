// The namespaces that main() runs tests in.

#include "own_processes.h"
#include "process.h"
#include "temp_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

namespace
{

namespace fs = std::filesystem;

const support::OwnProcesses ownProcesses;

/// Runs this program again, with the tests of the filter `tests`.
support::Command again(const std::string &tests)
{
	return support::runnable({fs::read_symlink("/proc/self/exe"), "--gtest_filter=" + tests});
}

TEST(Main, gives_a_test_an_empty_var_tmp)
{
	EXPECT_TRUE(fs::is_empty("/var/tmp"));
}

TEST(Main, gives_every_test_program_another)
{
	support::writeFile("/var/tmp/ps.tmp", "mine\n");
	const support::Outcome outcome = support::run(again("Main.gives_a_test_an_empty_var_tmp"));
	EXPECT_EQ(outcome.status, 0) << outcome.out;
	EXPECT_NE(outcome.out.find("[  PASSED  ] 1 test."), std::string::npos) << outcome.out;
	EXPECT_EQ(support::readFile("/var/tmp/ps.tmp"), "mine\n");
}

TEST(Main, makes_a_test_that_kills_the_first_of_its_own_processes)
{
	EXPECT_EQ(getpid(), 1);
	EXPECT_EQ(fs::read_symlink("/proc/self"), "1");
}

TEST(Main, gives_a_user_no_rights_that_he_has_not_elsewhere)
{
	const support::TempFolder folder;
	const std::string path = folder.write("locked", "");
	ASSERT_EQ(chmod(path.c_str(), 0), 0);
	EXPECT_EQ(access(path.c_str(), R_OK) == 0, geteuid() == 0);
}

TEST(Main, says_what_is_missing_where_there_are_no_namespaces)
{
	support::Command command = {
		"unshare", "--map-root-user", "sh", "-c", "echo 0 >/proc/sys/user/max_mnt_namespaces; exec \"$@\"",
		"sh"};
	for (const std::string &word : again("-*"))
		command.push_back(word);
	const support::Outcome outcome = support::run(command);
	EXPECT_EQ(outcome.status, 1);
	EXPECT_EQ(outcome.err,
	          "tests need a /var/tmp of their own, but entering namespaces failed (No space left "
	          "on device): permit user namespaces, or be root; docs/testing.md says what a "
	          "container must permit\n");
}

} // namespace

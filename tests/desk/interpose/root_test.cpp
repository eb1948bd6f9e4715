// With --root: nothing outside of the folder is read, written or removed through a served path.

#include "reach.h"

#include <gtest/gtest.h>

#include <unistd.h>

#include <filesystem>

namespace
{

using support::DeskRun;
using support::exists;
using support::readFile;
using support::ReceiverFolder;
using support::TempFolder;

TEST(Root, reaches_nothing_through_links_that_lead_out)
{
	TempFolder elsewhere;
	const std::string log = elsewhere.write("scaning.log", "kept");
	ReceiverFolder receiver;
	ASSERT_EQ(symlink(elsewhere.path().c_str(), (receiver / "var").c_str()), 0);
	for (const char *how : {"remove", "unlink", "write", "read"}) {
		const DeskRun run = reach(how, "/var/scaning.log", {"--root", receiver.path()});
		EXPECT_EQ(run.outcome.status, 0) << run.outcome.err;
		EXPECT_EQ(run.outcome.err.find("kept"), std::string::npos) << run.outcome.err;
		EXPECT_EQ(readFile(log), "kept") << how;
	}
}

TEST(Root, follows_links_inside_itself)
{
	ReceiverFolder receiver;
	receiver.write("data/scaning.log", "inside\n");
	ASSERT_EQ(symlink("/data", (receiver / "var").c_str()), 0) << "as the receiver sees it";
	EXPECT_NE(reach("read", "/var/scaning.log", {"--root", receiver.path()}).outcome.err.find("inside"),
	          std::string::npos);
	reach("remove", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_FALSE(exists(receiver / "data/scaning.log"));
}

TEST(Root, says_what_it_lacks)
{
	ReceiverFolder receiver;
	const std::string said = reach("read", "/proc/meminfo", {"--root", receiver.path()}).outcome.err;
	EXPECT_NE(
		said.find("deskhost: with --root, /proc/meminfo is the one in that folder, which cannot be read: "
	              "No such file or directory\n"),
		std::string::npos)
		<< said;
}

TEST(Root, serves_a_path_however_it_is_spelled)
{
	ReceiverFolder receiver;
	receiver.meminfo("the receiver's\n");
	for (const char *path : {"/proc/meminfo", "/proc//meminfo", "/proc/./../proc/meminfo"})
		EXPECT_NE(reach("read", path, {"--root", receiver.path()}).outcome.err.find("the receiver's"),
		          std::string::npos)
			<< path;
}

TEST(Root, serves_writing_and_unlinking_as_well)
{
	ReceiverFolder receiver;
	receiver.write("var/.keep", "");
	reach("write", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_EQ(readFile(receiver / "var/scaning.log"), "written");
	const DeskRun run = reach("unlink", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_FALSE(exists(receiver / "var/scaning.log"));
	EXPECT_EQ(run.trace.front(), R"(unlink("/var/scaning.log"))");
}

TEST(Root, serves_further_files)
{
	ReceiverFolder receiver;
	receiver.write("etc/hostname", "box\n");
	const DeskRun run =
		reach("read", "/etc/hostname",
	          {"--root", receiver.path(), "--serve", "/etc/issue", "--serve", "/etc/hostname"});
	EXPECT_NE(run.outcome.err.find("fopen: box\n"), std::string::npos) << run.outcome.err;
	EXPECT_NE(reach("read", "/etc/issue", {"--root", receiver.path(), "--serve", "/etc/issue"})
	              .outcome.err.find("fopen: null"),
	          std::string::npos)
		<< "what the folder lacks is missing";
	for (const char *path : {"etc/hostname", "/etc/", "/etc/../etc/hostname", "/"}) {
		const DeskRun refused = reach("read", "/", {"--root", receiver.path(), "--serve", path});
		EXPECT_EQ(refused.outcome.status, 2) << path;
		EXPECT_NE(refused.outcome.err.find(path), std::string::npos) << refused.outcome.err;
	}
	EXPECT_EQ(reach("read", "/", {"--serve", "/etc/hostname"}).outcome.status, 2) << "there is no root";
}

TEST(Root, removes_a_folder_that_stands_in_the_logs_place_when_it_is_empty)
{
	ReceiverFolder receiver;
	receiver.write("var/scaning.log/inside", "");
	EXPECT_NE(reach("remove", "/var/scaning.log", {"--root", receiver.path()}).outcome.err.find("remove: -1"),
	          std::string::npos);
	std::filesystem::remove(receiver / "var/scaning.log/inside");
	reach("remove", "/var/scaning.log", {"--root", receiver.path()});
	EXPECT_FALSE(exists(receiver / "var/scaning.log"));
}

} // namespace

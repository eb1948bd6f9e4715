// Paths in a folder that stands for /, with openat2() and with the fallback for older kernels.

#include "open_in_root.h"

#include "temp_folder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace open_in_root_test
{

using Opener = int (*)(int, const char *, int);

class OpenInRoot : public testing::TestWithParam<Opener>
{
protected:
	void SetUp() override
	{
		outside.write("secret", "outside");
		root.write("file", "top");
		root.write("etc/file", "in etc");
		root.write("secret", "inside");
		link("/etc", "absolute");
		link("etc", "relative");
		link("..", "etc/up");
		link("../../../../etc/file", "etc/out");
		link("/absolute/../etc/./file", "chain");
		link(outside.path(), "leads_out");
		link("round", "round");
		link("/etc/made", "dangling");
		folder = open(root.path().c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC);
	}
	void TearDown() override { close(folder); }

	void link(const std::string &target, const std::string &name)
	{
		ASSERT_EQ(symlink(target.c_str(), (root / name).c_str()), 0);
	}

	int opened(const std::string &path, int flags) { return GetParam()(folder, path.c_str(), flags); }

	/// The content of `path`, or the error.
	std::string content(const std::string &path, int flags = O_RDONLY)
	{
		const int file = opened(path, flags);
		if (file < 0)
			return std::strerror(errno);
		char bytes[100];
		const ssize_t length = read(file, bytes, sizeof bytes);
		const std::string failed = std::strerror(errno);
		EXPECT_EQ(fcntl(file, F_GETFD), FD_CLOEXEC);
		close(file);
		return length < 0 ? failed : std::string(bytes, static_cast<size_t>(length));
	}

	support::TempFolder outside, root;
	int folder = -1;
};

TEST_P(OpenInRoot, finds_files_from_the_root_on)
{
	EXPECT_EQ(content("/file"), "top");
	EXPECT_EQ(content("etc//./file"), "in etc");
	EXPECT_EQ(content("/missing"), "No such file or directory");
	EXPECT_EQ(content("/missing/file"), "No such file or directory");
	EXPECT_EQ(content("/file/file"), "Not a directory");
	EXPECT_EQ(content("/file/"), "Not a directory");
}

TEST_P(OpenInRoot, follows_links_to_places_in_the_root_or_refuses_them)
{
	if (GetParam() == desk::openWithoutLinks) {
		for (const char *path : {"/absolute/file", "/relative/file", "/leads_out/secret"})
			EXPECT_EQ(content(path), "Not a directory") << path;
		for (const char *path : {"/chain", "/round", "/dangling", "/etc/../file", ".."})
			EXPECT_EQ(content(path), "Too many levels of symbolic links") << path;
		EXPECT_EQ(content("/chain", O_PATH), "Too many levels of symbolic links");
		EXPECT_EQ(content("/dangling", O_WRONLY | O_CREAT), "Too many levels of symbolic links");
		EXPECT_FALSE(std::filesystem::exists(root / "etc/made"));
		return;
	}
	EXPECT_EQ(content(""), "No such file or directory");
	EXPECT_EQ(content("/etc/../file"), "top");
	EXPECT_EQ(content("/../../etc/../etc/file"), "in etc") << "the root is its own parent";
	EXPECT_EQ(content("/absolute/file"), "in etc");
	EXPECT_EQ(content("/relative/file"), "in etc");
	EXPECT_EQ(content("/etc/up/file"), "top");
	EXPECT_EQ(content("/etc/out"), "in etc");
	EXPECT_EQ(content("/chain"), "in etc");
	EXPECT_EQ(content("/leads_out/secret"), "No such file or directory");
	EXPECT_EQ(content("/leads_out/../secret"), "No such file or directory");
	EXPECT_EQ(content("/round"), "Too many levels of symbolic links");
	EXPECT_EQ(content("/round/file"), "Too many levels of symbolic links");
}

TEST_P(OpenInRoot, opens_folders)
{
	for (const char *path : {"/", "/etc", "/etc/", "."}) {
		const int found = opened(path, O_PATH | O_DIRECTORY);
		ASSERT_GE(found, 0) << path;
		struct stat status;
		EXPECT_EQ(fstat(found, &status), 0);
		EXPECT_TRUE(S_ISDIR(status.st_mode)) << path;
		close(found);
	}
	EXPECT_EQ(content("/etc"), "Is a directory");
	EXPECT_EQ(content("/file", O_PATH | O_DIRECTORY), "Not a directory");
}

TEST_P(OpenInRoot, creates_and_writes)
{
	const int flags = O_WRONLY | O_CREAT | O_TRUNC;
	for (const char *path : {"/new", "/etc/made"}) {
		const int file = opened(path, flags);
		ASSERT_GE(file, 0) << path;
		EXPECT_EQ(write(file, "x", 1), 1);
		close(file);
		EXPECT_EQ(content(path), "x");
	}
	EXPECT_EQ(content("/new", flags | O_EXCL), "File exists");
	EXPECT_EQ(content("/missing/new", flags), "No such file or directory");
	EXPECT_EQ(content("/etc", flags), "Is a directory");
}

TEST_P(OpenInRoot, leaves_no_file_open)
{
	const auto next = [] {
		const int file = open("/dev/null", O_RDONLY | O_CLOEXEC);
		close(file);
		return file;
	};
	const int before = next();
	for (const char *path : {"/chain", "/etc/../etc/missing", "/etc/up/etc/up/etc/file", "/round"})
		content(path);
	EXPECT_EQ(next(), before);
}

INSTANTIATE_TEST_SUITE_P(Ways, OpenInRoot, testing::Values(desk::openInRoot, desk::openWithoutLinks),
                         [](const testing::TestParamInfo<Opener> &opener) {
							 return opener.param == desk::openInRoot ? "by_the_kernel" : "without_links";
						 });

} // namespace open_in_root_test

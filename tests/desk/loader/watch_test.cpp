#include "watch.h"

#include "support.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <mutex>

namespace
{

using desk::Watch;
using support::TempFolder;

/// Counts how often a watch notifies.
class Notices
{
public:
	std::function<void()> counter()
	{
		return [this] {
			const std::lock_guard<std::mutex> lock(mutex);
			++count;
			more.notify_all();
		};
	}

	bool comesTo(int times, std::chrono::milliseconds patience = std::chrono::seconds(20))
	{
		std::unique_lock<std::mutex> lock(mutex);
		return more.wait_for(lock, patience, [&] { return count >= times; });
	}

private:
	std::mutex mutex;
	std::condition_variable more;
	int count = 0;
};

TEST(Watch, tells_when_the_file_is_written_or_replaced)
{
	TempFolder folder;
	const std::string file = folder.write("plugin.so.0", "one");
	Notices notices;
	std::string error;
	const auto watch = Watch::start(file, notices.counter(), error);
	ASSERT_TRUE(watch) << error;
	EXPECT_FALSE(watch->changed());

	folder.write("plugin.so.0", "two");
	EXPECT_TRUE(notices.comesTo(1)) << "written in its place";
	EXPECT_TRUE(watch->changed());
	EXPECT_FALSE(watch->changed()) << "asked once, answered once";

	std::filesystem::rename(folder.write("new", "three"), file);
	EXPECT_TRUE(notices.comesTo(2)) << "another file took its name";

	std::filesystem::remove(file);
	folder.write("plugin.so.0", "four");
	EXPECT_TRUE(notices.comesTo(3)) << "deleted and made again";
}

TEST(Watch, does_not_mind_other_files_nor_tell_of_one_change_twice)
{
	TempFolder folder;
	const std::string file = folder.write("plugin.so.0", "one");
	Notices notices;
	std::string error;
	const auto watch = Watch::start(file, notices.counter(), error);
	folder.write("plugin.so", "another");
	folder.write("plugin.so.01", "another");
	EXPECT_FALSE(notices.comesTo(1, std::chrono::milliseconds(700)));
	for (const char *content : {"t", "tw", "two"})
		folder.write("plugin.so.0", content);
	EXPECT_TRUE(notices.comesTo(1));
	EXPECT_FALSE(notices.comesTo(2, std::chrono::milliseconds(700))) << "a build writes more than once";
}

TEST(Watch, says_why_it_cannot_watch)
{
	std::string error;
	EXPECT_FALSE(Watch::start(
		"/no/such/folder/plugin.so.0", [] {}, error));
	EXPECT_NE(error.find("/no/such/folder/plugin.so.0"), std::string::npos) << error;
}

} // namespace

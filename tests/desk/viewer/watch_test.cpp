// The plugin is compiled again while the screen shows it.

#include "watch.h"

#include "error_of.h"
#include "support.h"
#include "tmux.h"

#include <gtest/gtest.h>

#include <poll.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace watch_test
{

using desk::Watch;
using support::TempFolder;

/// Waits like the event loop. Returns false when no change came in time.
bool changesWithin(Watch &watch, int milliseconds)
{
	for (int left = milliseconds; left > 0; left -= 50) {
		pollfd notices = {watch.descriptor(), POLLIN, 0};
		if (poll(&notices, 1, 50) > 0)
			watch.readEvents();
		if (watch.changed())
			return true;
	}
	return false;
}

TEST(Watch, tells_when_the_file_is_written_or_replaced)
{
	TempFolder folder;
	const std::string file = folder.write("plugin.so.0", "one");
	const auto watch = Watch::start(file);
	EXPECT_FALSE(watch->changed());
	EXPECT_EQ(watch->patience(), -1);

	folder.write("plugin.so.0", "two");
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "written in its place";
	EXPECT_FALSE(watch->changed()) << "asked once, answered once";

	std::filesystem::rename(folder.write("new", "three"), file);
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "another file took its name";

	std::filesystem::remove(file);
	folder.write("plugin.so.0", "four");
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "deleted and made again";
}

TEST(Watch, tells_when_a_link_or_a_folder_leads_to_another_file)
{
	namespace fs = std::filesystem;
	TempFolder folder;
	const std::string link = folder / "build/plugin.so.0";
	folder.write("build/plugin.so.0.1", "one");
	folder.write("build/plugin.so.0.2", "two");
	fs::create_symlink("plugin.so.0.1", link);
	fs::create_symlink("build", folder / "current");
	const auto watch = Watch::start(folder / "current/plugin.so.0");
	EXPECT_FALSE(changesWithin(*watch, 500));

	folder.write("build/plugin.so.0.1", "one again");
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "what the link leads to";
	fs::remove(link);
	fs::create_symlink(folder / "build/plugin.so.0.2", link);
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "the link";
	folder.write("build/plugin.so.0.1", "nobody's");
	EXPECT_FALSE(changesWithin(*watch, 500)) << "it no longer leads there";

	fs::remove_all(folder / "build");
	EXPECT_FALSE(changesWithin(*watch, 500)) << "there is nothing to load";
	folder.write("build/plugin.so.0", "three");
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "its folder is made again";
	folder.write("build/plugin.so.0", "four");
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "and watched";

	folder.write("other/plugin.so.0", "five");
	fs::remove(folder / "current");
	fs::create_symlink("other", folder / "current");
	EXPECT_TRUE(changesWithin(*watch, 20000)) << "a link to the folder";
}

TEST(Watch, does_not_mind_other_files_nor_tell_of_one_change_twice)
{
	TempFolder folder;
	const std::string file = folder.write("plugin.so.0", "one");
	const auto watch = Watch::start(file);
	folder.write("plugin.so", "another");
	folder.write("plugin.so.01", "another");
	EXPECT_FALSE(changesWithin(*watch, 700));
	for (const char *content : {"t", "tw", "two"})
		folder.write("plugin.so.0", content);
	EXPECT_TRUE(changesWithin(*watch, 20000));
	EXPECT_FALSE(changesWithin(*watch, 700)) << "a build writes more than once";
}

TEST(Watch, says_why_it_cannot_watch)
{
	const std::string error = support::errorOf([] { Watch::start("/no/such/folder/plugin.so.0"); });
	EXPECT_NE(error.find("/no/such/folder/plugin.so.0"), std::string::npos) << error;

	const TempFolder folder;
	const support::Outcome outcome =
		support::run({"sh", "-c",
	                  "cd '" + folder.path() + "' && mkdir gone && cd gone && rmdir ../gone && exec '" +
	                      support::deskhostPath() + "' --watch --screen framebuffer --plugin some.so.0"});
	EXPECT_EQ(outcome.status, 1);
	std::vector<std::string> said = support::lines(outcome.err);
	const auto isFontconfigs = [](const std::string &line) {
		return line.rfind("Fontconfig error: ", 0) == 0;
	};
	said.erase(std::remove_if(said.begin(), said.end(), isFontconfigs),
	           said.end()); // Debian 13's looks at the folder
	EXPECT_EQ(said,
	          std::vector<std::string>(
				  {"deskhost: cannot watch 'some.so.0': No such file or directory; leave out --watch"}));
}

/// The desk host with --watch in a terminal.
class WatchedRun : public testing::Test
{
protected:
	WatchedRun()
	{
		receiver.scanLog("kept\n");
		compile("one");
	}

	void compile(const std::string &version) const
	{
		std::filesystem::copy_file(VERSIONS + version + ".so.0", plugin,
		                           std::filesystem::copy_options::overwrite_existing);
	}

	void start()
	{
		process = terminal.start(support::deskhostPath() + " --screen terminal --watch --plugin " + plugin +
		                         " --root " + receiver.path());
		ASSERT_TRUE(terminal.shows("nothing in one, 0 greens"));
	}

	bool pressAndSee(const char *key, const std::string &text) const
	{
		terminal.press(key);
		return terminal.shows(text);
	}

	support::ReceiverFolder receiver;
	const std::string plugin = receiver / "plugin.so.0";
	Tmux terminal{100, 30};
	int process = 0;
};

TEST_F(WatchedRun, shows_the_same_screen_of_the_new_plugin)
{
	start();
	EXPECT_TRUE(pressAndSee("g", "green in one, 1 greens"));
	EXPECT_TRUE(pressAndSee("g", "green in one, 2 greens"));
	compile("two");
	EXPECT_TRUE(terminal.shows("green in two, 2 greens"));
	EXPECT_TRUE(pressAndSee("g", "green in two, 3 greens"));
	compile("one");
	EXPECT_TRUE(terminal.shows("green in one, 3 greens"));
	EXPECT_TRUE(pressAndSee("q", "plugin_exec returned -1: the viewer left the menu"));
	EXPECT_TRUE(terminal.shows("status=0"));
}

TEST_F(WatchedRun, keeps_the_picture_while_the_plugin_cannot_be_loaded)
{
	start();
	EXPECT_TRUE(pressAndSee("g", "green in one, 1 greens"));
	receiver.write("plugin.so.0", "half a plugin");
	EXPECT_TRUE(terminal.shows("cannot load the plugin"));
	EXPECT_TRUE(terminal.shows("green in one, 1 greens"));
	terminal.press("g");
	EXPECT_TRUE(terminal.losesSight("cannot load the plugin"));
	compile("two");
	EXPECT_TRUE(terminal.shows("green in two, 1 greens")) << "keys that nothing takes are not pressed later";
}

TEST_F(WatchedRun, ends_when_the_viewer_leaves_a_broken_plugin)
{
	start();
	receiver.write("plugin.so.0", "half a plugin");
	EXPECT_TRUE(terminal.shows("cannot load the plugin"));
	EXPECT_TRUE(pressAndSee("q", "status=1"));
}

TEST_F(WatchedRun, survives_whatever_a_new_plugin_does)
{
	start();
	EXPECT_TRUE(pressAndSee("g", "green in one, 1 greens"));
	for (int i = 0; i < 3; ++i) {
		compile("four");
		EXPECT_TRUE(terminal.shows("It was ended by signal 6, Aborted"));
		compile("two");
		EXPECT_TRUE(terminal.shows("green in two, 1 greens"));
	}
	std::filesystem::copy_file(support::testPlugin("misbehaves.so.0"), plugin,
	                           std::filesystem::copy_options::overwrite_existing);
	EXPECT_TRUE(terminal.shows("Ways to end"));
	terminal.press("7");
	EXPECT_TRUE(terminal.shows("The plugin has not answered for 1 s."));
	compile("two");
	EXPECT_TRUE(terminal.shows("green in two, 1 greens"));
}

TEST_F(WatchedRun, leaks_nothing)
{
	start();
	const auto count = [&] {
		const auto files = std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/fd");
		return std::distance(begin(files), end(files));
	};
	const auto before = count();
	for (int i = 0; i < 10; ++i)
		for (const char *version : {"two", "one"}) {
			compile(version);
			ASSERT_TRUE(terminal.shows(std::string("nothing in ") + version));
		}
	EXPECT_EQ(count(), before);
	EXPECT_EQ(support::childrenOf(process).size(), 1u);
}

TEST_F(WatchedRun, does_not_delete_again)
{
	start();
	EXPECT_TRUE(pressAndSee("g", "green in one, 1 greens"));
	EXPECT_TRUE(pressAndSee("r", "red in one, 1 greens"));
	EXPECT_TRUE(pressAndSee("g", "green in one, 2 greens"));
	EXPECT_FALSE(support::exists(receiver / "var/scaning.log"));
	receiver.scanLog("new\n");
	compile("two");
	EXPECT_TRUE(terminal.shows("green in two, 1 greens"));
	EXPECT_TRUE(terminal.shows("not pressed again, because it killed or deleted: red"));
	EXPECT_EQ(support::readFile(receiver / "var/scaning.log"), "new\n");
}

TEST_F(WatchedRun, does_not_delete_with_a_key_that_did_not_before)
{
	start();
	EXPECT_TRUE(pressAndSee("g", "green in one, 1 greens"));
	EXPECT_TRUE(pressAndSee("g", "green in one, 2 greens"));
	compile("three");
	EXPECT_TRUE(terminal.shows("nobody pressed the key: remove /var/scaning.log"));
	EXPECT_TRUE(terminal.shows("green in three, 1 greens"));
	EXPECT_TRUE(support::exists(receiver / "var/scaning.log"));
	EXPECT_TRUE(pressAndSee("g", "green in three, 2 greens"));
	EXPECT_FALSE(support::exists(receiver / "var/scaning.log")) << "pressed by a person";
}

} // namespace watch_test

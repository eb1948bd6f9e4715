// An author at work: the plugin is compiled anew while it is on the screen.

#include "watched_run.h"

#include "description.h"
#include "desk.h"
#include "files.h"
#include "pixel_canvas.h"
#include "support.h"

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>

namespace
{

using desk::Desk;
using desk::Key;
using support::ReceiverFolder;

/// The screen and who sits in front of it: at each wait for a key the next step is done, and when it gives
/// no key, the wait ends as wake() is called.
class Author : public desk::Screen
{
public:
	using Step = std::function<std::optional<Key>()>;

	explicit Author(std::deque<Step> all) : steps(std::move(all)) {}

	desk::Canvas *canvas() override { return &painted; }
	void present(const desk::Rect &) override { ++presented; }
	void note(const std::string &line) override { notes += line + '\n'; }

	std::optional<Key> waitKey() override
	{
		if (steps.empty())
			return std::nullopt;
		const Step step = std::move(steps.front());
		steps.pop_front();
		if (const auto key = step())
			return key;
		std::unique_lock<std::mutex> lock(mutex);
		EXPECT_TRUE(called.wait_for(lock, std::chrono::seconds(20), [&] { return woken; }));
		woken = false;
		return std::nullopt;
	}

	void wake() override
	{
		const std::lock_guard<std::mutex> lock(mutex);
		woken = true;
		called.notify_all();
	}

	int presented = 0;
	std::string notes;

private:
	std::deque<Step> steps;
	desk::PixelCanvas painted;
	std::mutex mutex;
	std::condition_variable called;
	bool woken = false;
};

class WatchedRun : public testing::Test
{
protected:
	WatchedRun()
	{
		EXPECT_TRUE(desk::Files::get().setRoot(receiver.path(), error)) << error;
		receiver.scanLog("kept\n");
		copy("one");
	}
	~WatchedRun() override { Desk::get().setScreen(nullptr); }

	void copy(const std::string &version) const
	{
		std::filesystem::copy_file(VERSIONS + version + ".so.0", plugin,
		                           std::filesystem::copy_options::overwrite_existing);
	}

	static Author::Step press(Key key)
	{
		return [key] { return key; };
	}

	/// A compiler that overwrites the plugin.
	Author::Step compile(const std::string &version) const
	{
		return [this, version] {
			copy(version);
			return std::nullopt;
		};
	}

	/// Looks at the label and presses `key`.
	Author::Step see(const std::string &text, Key key) const
	{
		return [text, key] {
			const auto windows = desk::describe(Desk::get().windows());
			EXPECT_EQ(windows.empty() ? "" : windows.back()["widgets"][0]["text"], text);
			return key;
		};
	}

	bool run(std::deque<Author::Step> steps)
	{
		auto owned = std::make_unique<Author>(std::move(steps));
		author = owned.get();
		Desk::get().setScreen(std::move(owned));
		return desk::runWatched(plugin, {}, result, error);
	}

	ReceiverFolder receiver;
	const std::string plugin = receiver / "plugin.so.0";
	Author *author = nullptr;
	int result = 0;
	std::string error;
};

TEST_F(WatchedRun, shows_the_same_screen_of_the_new_plugin)
{
	EXPECT_TRUE(run({press(Key::green), see("green in one, 1 greens", Key::green), compile("two"),
	                 see("green in two, 2 greens", Key::green), compile("one"),
	                 see("green in one, 3 greens", Key::exit)}))
		<< error;
	EXPECT_EQ(author->notes, "");
	EXPECT_EQ(result, -1) << "left by the viewer";
}

TEST_F(WatchedRun, keeps_the_picture_while_the_plugin_cannot_be_loaded)
{
	int presented = 0;
	const auto broken = [&] {
		presented = author->presented;
		receiver.write("plugin.so.0", "half a plugin");
		return std::nullopt;
	};
	const auto next = [&] {
		EXPECT_EQ(author->presented, presented);
		EXPECT_NE(author->notes.find("cannot load the plugin '" + plugin + "'"), std::string::npos)
			<< author->notes;
		EXPECT_EQ(author->notes.find("/proc/self"), std::string::npos) << author->notes;
		copy("two");
		return std::nullopt;
	};
	EXPECT_TRUE(
		run({press(Key::green), broken, press(Key::green), next, see("green in two, 1 greens", Key::exit)}))
		<< "keys that nothing takes are not pressed later";
}

TEST_F(WatchedRun, ends_when_the_viewer_leaves_a_broken_plugin)
{
	const auto broken = [&] {
		receiver.write("plugin.so.0", "half a plugin");
		return std::nullopt;
	};
	bool asked = false;
	EXPECT_TRUE(run({broken, press(Key::exit), [&] {
						 asked = true;
						 return Key::exit;
					 }}));
	EXPECT_FALSE(asked);
	EXPECT_TRUE(run({broken}) == false) << "the first one must be whole";
}

TEST_F(WatchedRun, does_not_delete_again)
{
	EXPECT_TRUE(run({press(Key::green), press(Key::red), see("red in one, 1 greens", Key::green),
	                 [&] {
						 EXPECT_FALSE(support::exists(receiver / "var/scaning.log"));
						 receiver.scanLog("new\n");
						 copy("two");
						 return std::nullopt;
					 },
	                 see("green in two, 1 greens", Key::exit)}))
		<< error;
	EXPECT_EQ(support::readFile(receiver / "var/scaning.log"), "new\n");
	EXPECT_NE(author->notes.find("not pressed again, because it killed or deleted: red"), std::string::npos)
		<< author->notes;
}

TEST_F(WatchedRun, does_not_delete_with_a_key_that_did_not_before)
{
	EXPECT_TRUE(run({press(Key::green), press(Key::green), compile("three"),
	                 see("green in three, 1 greens", Key::green),
	                 [&] {
						 EXPECT_FALSE(support::exists(receiver / "var/scaning.log")) << "pressed by a person";
						 return Key::exit;
					 }}))
		<< error;
	EXPECT_NE(author->notes.find("nobody pressed the key: remove /var/scaning.log"), std::string::npos)
		<< author->notes;
}

} // namespace

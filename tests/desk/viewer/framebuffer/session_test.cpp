// The menu on a simulated framebuffer, with a simulated remote control.

#include "session.h"

#include "kernel.h"

#include <gtest/gtest.h>
#include <linux/input.h>

#include <thread>

using support::TempFolder;

namespace session_test
{

/// A session, ended by the destructor.
class OnFramebuffer
{
public:
	OnFramebuffer()
	{
		receiver.ps("  PID USER COMMAND\n    1 root init\n");
		options.plugin = support::pluginPath();
		options.root = receiver.path();
		options.keys = {desk::Key::ok};
		options.dump = folder / "dump";
		desk::Stage stage;
		stage.half = support::pluginHalfPath();
		stage.skinText = support::readFile(support::sourcePath("desk/skins/default.toml"));
		stage.skin = desk::Skin::parse(stage.skinText, "skin");
		stage.draws = true;
		stage.openScreen = [this] {
			return desk::makeFramebufferScreen({device.path, remote.path, console.path});
		};
		running = std::thread([this, stage] { desk::Session(options, stage).run(); });
	}
	~OnFramebuffer()
	{
		for (int i = 0; i < 3; ++i)
			remote.press(KEY_EXIT);
		running.join();
	}

	support::Lines keys() const
	{
		support::Lines keys;
		for (const support::Json &record : support::dumpSoFar(folder / "dump"))
			keys.push_back(record["after"]);
		return keys;
	}
	std::string title() const
	{
		const std::vector<support::Json> all = support::dumpSoFar(folder / "dump");
		return all.empty() ? "" : all.back()["windows"].back()["title"];
	}

	support::ReceiverFolder receiver;
	TempFolder folder;
	const kernel::FramebufferDevice device{folder, 720, 576, 32, {16, 8, 0}, {8, 8, 0}, {0, 8, 0}};
	const kernel::Remote remote{folder, {KEY_UP, KEY_DOWN, KEY_OK, KEY_EXIT}};
	const kernel::Console console{folder};

private:
	desk::Options options;
	std::thread running;
};

TEST(OnFramebuffer, a_question_is_answered_by_who_has_seen_it)
{
	const OnFramebuffer menu;
	const auto shows = [&](const char *title) {
		return support::eventually([&] { return menu.title() == title; });
	};
	const auto pause = [] { std::this_thread::sleep_for(std::chrono::milliseconds(900)); };
	ASSERT_TRUE(shows("Info"));

	for (int i = 0; i < 3; ++i)
		menu.remote.press(KEY_OK);
	ASSERT_TRUE(shows("kill pid"));
	pause();
	EXPECT_EQ(menu.keys(), (support::Lines{"start", "ok", "ok"})) << "three at once";
	menu.remote.press(KEY_EXIT);
	ASSERT_TRUE(shows("Info"));

	menu.remote.key(KEY_OK, 1);
	ASSERT_TRUE(shows("kill pid"));
	pause(); // longer than the delay before a keyboard repeats
	for (int i = 0; i < 3; ++i) {
		menu.remote.key(KEY_OK, 2);
		pause();
	}
	EXPECT_EQ(menu.title(), "kill pid") << "held";
	menu.remote.key(KEY_OK, 0);
	pause();
	menu.remote.press(KEY_OK);
	EXPECT_TRUE(shows("Vexlo service menu")) << "pressed once more";
}

} // namespace session_test

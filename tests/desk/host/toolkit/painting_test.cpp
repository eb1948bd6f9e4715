// Painting only the changes gives the same screen as painting all of it.

#include "desk.h"
#include "files.h"
#include "inside.h"
#include "pixel_canvas.h"
#include "support.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>

using desk::Desk;
using desk::PixelCanvas;
using desk::Rect;

namespace painting_test
{

/// The first pixel where two canvases differ; "" when they are equal.
std::string difference(PixelCanvas &one, PixelCanvas &other)
{
	for (int y = 0; y < desk::screenHeight; ++y) {
		const unsigned char *row = one.pixels() + y * one.stride();
		const unsigned char *same = other.pixels() + y * other.stride();
		if (std::memcmp(row, same, 4 * desk::screenWidth) == 0)
			continue;
		for (int x = 0; x < desk::screenWidth; ++x)
			if (std::memcmp(row + 4 * x, same + 4 * x, 3) != 0) // the fourth byte is unused
				return "at " + std::to_string(x) + ", " + std::to_string(y);
	}
	return "";
}

/// Counts moves, and collects what the fills are.
class Canvas : public PixelCanvas
{
public:
	void fill(const Rect &area, const desk::Fill &fill) override
	{
		parts.insert(fill.part);
		PixelCanvas::fill(area, fill);
	}
	bool move(const Rect &area, int down) override
	{
		++moves;
		return PixelCanvas::move(area, down);
	}
	static int moves;
	std::set<desk::Part> parts;
};
int Canvas::moves = 0;

/// Presses keys, and checks the frame before each.
class Painter : public support::Viewer
{
public:
	Painter(const std::string &pressed, std::vector<Rect> &seen) : Viewer(pressed), changes(seen)
	{
		parts.clear();
	}

	void onFrame(const desk::Frame &frame) override
	{
		const std::optional<Rect> changed = picture.apply(frame.edit);
		ASSERT_TRUE(changed);
		EXPECT_EQ(*changed, changed->intersected(desk::wholeScreen));
		changes.push_back(*changed);
		picture.drawChanges(painted);
		Canvas whole;
		Desk::get().paint(whole);
		parts.push_back(whole.parts);
		const std::string where = difference(painted, whole);
		EXPECT_EQ(where, "") << "before key " << changes.size();
	}

	static std::vector<std::set<desk::Part>> parts; ///< of each frame

private:
	std::vector<Rect> &changes;
	desk::DisplayList picture;
	Canvas painted;
};

std::vector<std::set<desk::Part>> Painter::parts;

/// The rectangles that were painted before the first key and after each.
std::vector<Rect> changesOf(const std::string &plugin, const std::string &keys)
{
	support::ReceiverFolder receiver;
	receiver.ps(support::repeat("  123 root telnetd\n", 40));
	receiver.df(support::repeat("/dev/root 7.8M 3.1M 4.7M 40% /\n", 5));
	receiver.meminfo(support::repeat("MemTotal: 61888 kB\n", 12));
	receiver.scanLog(support::repeat("transponder\n", 40));
	desk::Files::get().setRoot(receiver.path(), desk::Start().served, false);
	Desk::get().setSkin(
		desk::Skin::parse(support::readFile(support::sourcePath("desk/skins/default.toml")), "skin"));
	std::vector<Rect> changes;
	Painter viewer(keys, changes);
	support::runInside(viewer, plugin, true);
	return changes;
}

TEST(Painting, leaves_the_same_screen_as_painting_all_of_it)
{
	changesOf(support::pluginPath(),
	          "down up up ok right ok exit 3 down down pagedown end up red right left exit "
	          "down right left exit 1 down ok right exit exit 2 left exit exit");
	changesOf(support::testPlugin("widgets.so.0"),
	          "down down ok home up pageup yellow exit right left ok ok exit");
	changesOf(support::testPlugin("lifetimes.so.0"), "ok red down yellow exit");
}

TEST(Painting, is_of_two_rows_for_one_step_in_a_list)
{
	const std::vector<Rect> changes = changesOf(support::pluginPath(), "3 down down left left exit exit");
	EXPECT_EQ(changes[0], desk::wholeScreen);
	EXPECT_EQ(changes[2].h, 40);
	EXPECT_EQ(changes[3].h, 40);
	EXPECT_EQ(changes[3].y, changes[2].y + 20);
	EXPECT_LE(changes[3].w, 600);
}

TEST(Painting, moves_the_lines_of_a_list_that_scrolls)
{
	Canvas::moves = 0;
	std::string keys = "3";
	for (int i = 0; i < 30; ++i)
		keys += " down";
	for (int i = 0; i < 30; ++i)
		keys += " up";
	changesOf(support::pluginPath(), keys + " exit exit");
	EXPECT_GT(Canvas::moves, 20);
}

TEST(Painting, tells_what_each_fill_is)
{
	using desk::Part;
	changesOf(support::pluginPath(), "3 left exit exit");
	ASSERT_GE(Painter::parts.size(), 3u);
	EXPECT_EQ(Painter::parts[0], (std::set{Part::backdrop, Part::currentLine, Part::line}))
		<< "menu and help";
	EXPECT_EQ(Painter::parts[1],
	          (std::set{Part::backdrop, Part::currentLine, Part::button, Part::track, Part::thumb}));
	EXPECT_EQ(Painter::parts[2],
	          (std::set{Part::backdrop, Part::idleLine, Part::currentButton, Part::track, Part::thumb}));
}

TEST(Painting, is_not_when_nothing_has_changed)
{
	const std::vector<Rect> changes = changesOf(support::pluginPath(), "9 0 right red exit");
	for (size_t key = 1; key <= 4; ++key)
		EXPECT_TRUE(changes[key].empty()) << "key " << key;
}

} // namespace painting_test

// The console in graphics mode.

#include "console.h"

#include "kernel.h"

#include <gtest/gtest.h>

using support::TempFolder;

namespace console_test
{

std::unique_ptr<desk::Console> taken(const kernel::Console &console)
{
	auto held = desk::Console::take(console.path);
	EXPECT_TRUE(held);
	return held;
}

TEST(Console, is_in_graphics_mode_while_it_is_held)
{
	TempFolder folder;
	const kernel::Console console(folder);
	auto held = taken(console);
	EXPECT_EQ(console.display(), "graphics");
	EXPECT_EQ(console.keyboard(), "off") << "what is pressed must not be typed into a shell";
	held.reset();
	EXPECT_EQ(console.display(), "text");
	EXPECT_EQ(console.keyboard(), "typing");
}

TEST(Console, is_given_back_although_it_has_hung_up)
{
	TempFolder folder;
	const kernel::Console console(folder);
	auto held = taken(console);
	console.hangUp();
	held.reset();
	EXPECT_EQ(console.display(), "text");
	EXPECT_EQ(console.keyboard(), "typing");
}

TEST(Console, is_no_matter_where_there_is_none)
{
	TempFolder folder;
	EXPECT_FALSE(desk::Console::take(folder / "missing"));
	EXPECT_FALSE(desk::Console::take(folder.write("file", "text")));
}

} // namespace console_test

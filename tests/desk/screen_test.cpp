#include "screen.h"
#include "terminal_screen.h"
#include "window_screen.h"

#include <gtest/gtest.h>

namespace
{

using namespace desk;

TEST(NoScreen, ShowsNothingAndHasNoKeys)
{
	const auto screen = makeNoScreen();
	EXPECT_EQ(screen->canvas(), nullptr);
	screen->present(desk::wholeScreen);
	EXPECT_EQ(screen->waitKey(), std::nullopt);
	EXPECT_EQ(screen->waitKey(), std::nullopt);
	EXPECT_FALSE(screen->ownsTerminal());
}

TEST(Notes, GoToStandardErrorALineEach)
{
	const auto screen = makeNoScreen();
	testing::internal::CaptureStdout();
	testing::internal::CaptureStderr();
	screen->note("[write ps info]");
	screen->note("a line with its end\n");
	screen->note("");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "[write ps info]\na line with its end\n\n");
	EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(Notes, ObeyNoControls)
{
	const auto screen = makeNoScreen();
	testing::internal::CaptureStderr();
	screen->note("a \x1b[2J name \xff");
	EXPECT_EQ(testing::internal::GetCapturedStderr(), "a \xE2\x90\x9B[2J name \xEF\xBF\xBD\n");
}

} // namespace

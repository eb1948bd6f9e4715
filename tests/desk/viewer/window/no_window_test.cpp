// A desk host built without the window.

#include "window_screen.h"

#include <gtest/gtest.h>

namespace
{

TEST(NoWindow, says_that_it_is_left_out_and_what_there_is)
{
	std::string error;
	EXPECT_EQ(desk::makeWindowScreen("menu", error), nullptr);
	EXPECT_EQ(error, "this desk host is built without a window; use --screen terminal, framebuffer or none");
	EXPECT_FALSE(desk::displayAnswers(error));
	EXPECT_EQ(error, "there is a display, but this desk host is built without a window");
}

} // namespace

// A desk host built without the window.

#include "window_screen.h"

#include "error_of.h"

#include <gtest/gtest.h>

namespace
{

TEST(NoWindow, says_that_it_is_left_out_and_what_there_is)
{
	EXPECT_EQ(support::errorOf([] { desk::makeWindowScreen("menu"); }),
	          "this desk host is built without a window; use --screen terminal, framebuffer or none");
	EXPECT_EQ(support::errorOf([] { desk::awaitDisplay(); }),
	          "there is a display, but this desk host is built without a window");
}

} // namespace

// eSysInfDialog::exit() is an operation of the class that nothing on the screen leads to.

#include "sysinf.h"

#include "desk.h"

#include <gtest/gtest.h>

namespace
{

TEST(SysInfExit, accepts)
{
	eSysInfDialog dialog;
	eButton *button = new eButton(&dialog, nullptr, 1, "eButton");
	button->setShortcut("red");
	button->selected.connect(SigC::slot(dialog, &eSysInfDialog::exit));
	desk::Desk::get().press({desk::Key::red});
	EXPECT_EQ(dialog.exec(), 0);
}

} // namespace

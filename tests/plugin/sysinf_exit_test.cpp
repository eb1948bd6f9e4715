// eSysInfDialog::exit() is an operation of the class that nothing on the screen leads to.

#include "sysinf.h"

#include "desk.h"

#include <gtest/gtest.h>

namespace
{

struct PressesRed : desk::Peer
{
	void send(const desk::ToViewer &) override {}
	std::optional<desk::ToHost> receive() override { return desk::Press{desk::Key::red, false}; }
};

TEST(SysInfExit, accepts)
{
	eSysInfDialog dialog;
	eButton *button = new eButton(&dialog, nullptr, 1, "eButton");
	button->setShortcut("red");
	button->selected.connect(SigC::slot(dialog, &eSysInfDialog::exit));
	PressesRed viewer;
	desk::Desk::get().setViewer(&viewer);
	EXPECT_EQ(dialog.exec(), 0);
	desk::Desk::get().setViewer(nullptr);
}

} // namespace

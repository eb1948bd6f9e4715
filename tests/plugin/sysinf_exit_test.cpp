// eSysInfDialog::exit(), which no key reaches.

#include "sysinf.h"

#include "desk.h"
#include "trace.h"

#include <gtest/gtest.h>

namespace
{

struct PressesRed : desk::Peer
{
	void send(const desk::ToViewer &) override {}
	std::optional<desk::ToHost> receive() override { return desk::Press{desk::Key::red, false}; }
};

/// Names a private member, as an explicit instantiation may.
template <class Member, Member member> struct Private
{
	friend eButton *okButton(eSysInfDialog &dialog, Member) { return dialog.*member; }
};
using OkButton = eButton *eSysInfDialog::*;
eButton *okButton(eSysInfDialog &dialog, OkButton);
template struct Private<OkButton, &eSysInfDialog::okButton>;

struct Listener : SigC::Object
{
	void pressed() { ++calls; }
	int calls = 0;
};

TEST(SysInfExit, accepts_and_does_nothing_else)
{
	eSysInfDialog dialog;
	eButton *button = new eButton(&dialog, nullptr, 1, "eButton");
	button->setShortcut("red");
	button->selected.connect(SigC::slot(dialog, &eSysInfDialog::exit));
	ASSERT_NE(okButton(dialog, OkButton()), nullptr);
	Listener listener;
	okButton(dialog, OkButton())->selected.connect(SigC::slot(listener, &Listener::pressed));
	PressesRed viewer;
	desk::Desk::get().setViewer(&viewer);
	std::vector<std::string> calls;
	desk::Trace::get().start([&](const std::string &line) { calls.push_back(line.substr(line.find('.'))); });
	EXPECT_EQ(dialog.exec(), 0);
	desk::Trace::get().stop();
	desk::Desk::get().setViewer(nullptr);
	EXPECT_EQ(calls, (std::vector<std::string>{".exec()", ".accept()", ".exec() = 0"}));
	EXPECT_EQ(listener.calls, 0);
}

TEST(SysInfButton, is_kept)
{
	eSysInfDialog dialog;
	eButton *const button = okButton(dialog, OkButton());
	ASSERT_NE(button, nullptr);
	EXPECT_EQ(button->getClientRect().height(), 40);
}

} // namespace

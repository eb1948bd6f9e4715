#ifndef VEXLO_VEXLOMENU_H
#define VEXLO_VEXLOMENU_H

#include "host_names.h"

/// The "Vexlo service menu": four entries, each of which opens one screen about the receiver.
class eVexloMenu : public eSetupWindow
{
public:
	/// Builds the whole menu, hidden.
	eVexloMenu();
	~eVexloMenu();

	// The menu actions. Each runs its screen until the viewer leaves it; the menu is hidden meanwhile.
	void processinfo();
	void meminfo();
	void scanlog();
	void sysinf();

private:
	/// `number` is shown in front of the help.
	void addEntry(int number, const char *label, const char *help, void (eVexloMenu::*action)());
	template <class Dialog> void open();
};

/// What the host calls after it has loaded the plugin, on its GUI thread: runs the menu until the
/// viewer leaves it and returns what ended it. A host that passes an argument does no harm.
extern "C" __attribute__((visibility("default"))) int plugin_exec();

#endif

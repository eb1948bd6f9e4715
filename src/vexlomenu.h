#ifndef VEXLO_VEXLOMENU_H
#define VEXLO_VEXLOMENU_H

#include "host_names.h"

/// The "Vexlo service menu": each of its four entries opens one dialog about the receiver.
class eVexloMenu : public eSetupWindow
{
public:
	eVexloMenu();
	~eVexloMenu();

	// The menu's actions. Each runs its dialog until the viewer leaves it, and hides the menu meanwhile.
	void processinfo();
	void meminfo();
	void scanlog();
	void sysinf();

private:
	/// The help begins with `number`.
	void addEntry(int number, const char *label, const char *help, void (eVexloMenu::*action)());
	template <class Dialog> void open();
};

/// The host calls it on its GUI thread after loading the plugin. Runs the menu until the viewer leaves it, and
/// returns the result of exec(). An argument from the host does no harm.
extern "C" __attribute__((visibility("default"))) int plugin_exec();

#endif

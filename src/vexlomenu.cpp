#include "vexlomenu.h"

#include "meminfo.h"
#include "ps.h"
#include "scanlog.h"
#include "sysinf.h"
#include "translation.h"

eVexloMenu::eVexloMenu() : eSetupWindow(translate("Vexlo service menu"), 10, 400)
{
	cmove(ePoint(170, 145));

	// Separate statements: the order of evaluation of arguments is unspecified, and the label comes first.
	const char *label = translate("process info");
	addEntry(1, label, translate("show current processes in memory"), &eVexloMenu::processinfo);
	label = translate("memory info");
	addEntry(2, label, translate("show current used and free memory"), &eVexloMenu::meminfo);
	label = translate("scan log");
	addEntry(3, label, translate("show scan log"), &eVexloMenu::scanlog);
	label = translate("system info");
	addEntry(4, label, translate("show system info"), &eVexloMenu::sysinf);
}

eVexloMenu::~eVexloMenu() {}

void eVexloMenu::addEntry(int number, const char *label, const char *help, void (eVexloMenu::*action)())
{
	eString numberedHelp;
	numberedHelp.sprintf(hostFormat("(%d) %s"), number, help);

	// The list owns it.
	eListBoxEntryMenu *entry = new eListBoxEntryMenu(&VEXLO_MENU_LIST(*this), label, numberedHelp);
	entry->selected.connect(SigC::slot(*this, action));
}

template <class Dialog> void eVexloMenu::open()
{
	hide();
	Dialog dialog;
	dialog.show();
	dialog.exec();
	dialog.hide();
	show();
	// Destroys the dialog last, when the menu is visible again.
}

void eVexloMenu::processinfo()
{
	open<ePsDialog>();
}

void eVexloMenu::meminfo()
{
	open<eMemInfoDialog>();
}

void eVexloMenu::scanlog()
{
	open<eScanLogDialog>();
}

void eVexloMenu::sysinf()
{
	open<eSysInfDialog>();
}

int plugin_exec()
{
	eVexloMenu menu;
	menu.show();
	const int result = menu.exec();
	menu.hide();
	return result;
}

#include "vexlomenu.h"

#include "formatted.h"
#include "meminfo.h"
#include "ps.h"
#include "scanlog.h"
#include "sysinf.h"
#include "translation.h"

eVexloMenu::eVexloMenu() : eSetupWindow(translate("Vexlo service menu"), 10, 400)
{
	cmove(ePoint(170, 145));

	addEntry({1, translate("process info"), translate("show current processes in memory"),
	          &eVexloMenu::processinfo});
	addEntry(
		{2, translate("memory info"), translate("show current used and free memory"), &eVexloMenu::meminfo});
	addEntry({3, translate("scan log"), translate("show scan log"), &eVexloMenu::scanlog});
	addEntry({4, translate("system info"), translate("show system info"), &eVexloMenu::sysinf});
}

eVexloMenu::~eVexloMenu() = default;

void eVexloMenu::addEntry(const Line &line)
{
	// Belongs to the list, and has connected itself to it.
	eListBoxEntryMenu *entry = new eListBoxEntryMenu(&VEXLO_MENU_LIST(*this), line.label,
	                                                 formatted("(%d) %s", line.number, line.help));
	entry->selected.connect(SigC::slot(*this, line.action));
}

template <class Dialog> void eVexloMenu::open()
{
	hide();
	Dialog dialog;
	dialog.show();
	dialog.exec();
	dialog.hide();
	show();
	// The dialog goes last, when the menu is back on the screen.
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

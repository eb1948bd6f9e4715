#include "meminfo.h"

#include "meminfo_columns.h"
#include "widgets.h"

eMemInfoDialog::eMemInfoDialog() : eWindow(1)
{
	widgets::place(*this, "Memory info", ePoint(225, 113), eSize(270, 350));

	const MemInfoColumns columns = readMemInfo();
	const int clientHeight = VEXLO_CLIENT_HEIGHT(*this);

	// The columns begin below the top but are as high as the client area: the window cuts off the rest.
	widgets::addLabel(*this, columns.names.c_str(), ePoint(5, 5), eSize(150, clientHeight));
	widgets::addLabel(*this, columns.values.c_str(), ePoint(160, 5), eSize(100, clientHeight));
}

eMemInfoDialog::~eMemInfoDialog() {}

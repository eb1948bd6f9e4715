#include "meminfo.h"

#include "meminfo_columns.h"

eMemInfoDialog::eMemInfoDialog() : eWindow(1)
{
	setText("Memory info"); // the same in every language
	cmove(ePoint(225, 113));
	cresize(eSize(270, 350));

	const MemInfoColumns columns = readMemInfo();
	const int clientHeight = getClientRect().height();

	// As high as the whole client area although they start below its top: laid out so.
	eLabel *names = new eLabel(this, 0, 0, "eLabel");
	names->setText(columns.names);
	names->move(ePoint(5, 5));
	names->resize(eSize(150, clientHeight));

	eLabel *values = new eLabel(this, 0, 0, "eLabel");
	values->setText(columns.values);
	values->move(ePoint(160, 5));
	values->resize(eSize(100, clientHeight));
}

eMemInfoDialog::~eMemInfoDialog() = default;

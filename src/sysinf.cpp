#include "sysinf.h"

#include "mount_columns.h"
#include "mtd_columns.h"
#include "translation.h"

eSysInfDialog::eSysInfDialog() : eWindow(1)
{
	const int fontSize = eSkin::getActive()->queryValue("fontsize", 20);

	setText("Info"); // the same in every language
	cmove(ePoint(60, 70));
	cresize(eSize(600, 450));

	okButton = new eButton(this, nullptr, 1, "eButton");
	okButton->move(ePoint(10, getClientRect().height() - 50));
	okButton->resize(eSize(160, 40));
	okButton->setShortcut("green");
	okButton->setShortcutPixmap("green");
	okButton->loadDeco();
	okButton->setText(translate("OK"));
	okButton->selected.connect(SigC::slot(*this, &eWidget::accept));

	// The columns overlap a little, and the last of each table reaches past the client area: laid out so.
	const MtdColumns partitions = readMtdColumns();
	const int partitionsTop = fontSize + 5;
	const int partitionsHeight = fontSize * partitions.rows; // heading included
	addLabel("MTD blocks:", ePoint(5, 5), eSize(100, fontSize));
	addLabel(partitions.dev, ePoint(5, partitionsTop), eSize(70, partitionsHeight));
	addLabel(partitions.size, ePoint(70, partitionsTop), eSize(100, partitionsHeight));
	addLabel(partitions.erasesize, ePoint(190, partitionsTop), eSize(100, partitionsHeight));
	addLabel(partitions.name, ePoint(300, partitionsTop), eSize(350, partitionsHeight));

	const MountColumns mounts = readMountColumns();
	const int mountsTop = partitionsHeight + fontSize + 25;
	const int mountsHeight = fontSize * mounts.rows; // heading and a spare row included
	addLabel("Mounts:\n\n", ePoint(5, partitionsHeight + 20), eSize(240, mountsHeight));
	addLabel(mounts.filesystem, ePoint(5, mountsTop), eSize(270, mountsHeight));
	addLabel(mounts.usage, ePoint(280, mountsTop), eSize(500, mountsHeight));
}

eSysInfDialog::~eSysInfDialog() = default;

void eSysInfDialog::exit()
{
	accept();
}

void eSysInfDialog::addLabel(const eString &text, const ePoint &position, const eSize &size)
{
	eLabel *label = new eLabel(this, 0, 0, "eLabel");
	label->setText(text);
	label->move(position);
	label->resize(size);
}

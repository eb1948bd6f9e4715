#include "sysinf.h"

#include "mount_columns.h"
#include "mtd_columns.h"
#include "translation.h"
#include "widgets.h"

eSysInfDialog::eSysInfDialog() : eWindow(1)
{
	const int fontSize = widgets::rowHeight();

	widgets::place(*this, "Info", ePoint(60, 70), eSize(600, 450));

	okButton = widgets::addButton(*this, VEXLO_CLIENT_HEIGHT(*this), "green");
	widgets::setText(*okButton, translate("OK"));
	// A cast, because a toolkit may overload accept(). Named by this class, because accept() may be protected.
	okButton->selected.connect(SigC::slot(*this, static_cast<void (eWidget::*)()>(&eSysInfDialog::accept)));

	// Each column is as wide as its widest content, so columns overlap a little. The last column of each table
	// extends past the client area, which cuts it off.
	const MtdColumns partitions = readMtdColumns();
	const int partitionsTop = fontSize + 5;
	const int partitionsHeight = fontSize * partitions.rows; // heading included
	widgets::addLabel(*this, "MTD blocks:", ePoint(5, 5), eSize(100, fontSize));
	widgets::addLabel(*this, partitions.dev.c_str(), ePoint(5, partitionsTop), eSize(70, partitionsHeight));
	widgets::addLabel(*this, partitions.size.c_str(), ePoint(70, partitionsTop),
	                  eSize(100, partitionsHeight));
	widgets::addLabel(*this, partitions.erasesize.c_str(), ePoint(190, partitionsTop),
	                  eSize(100, partitionsHeight));
	widgets::addLabel(*this, partitions.name.c_str(), ePoint(300, partitionsTop),
	                  eSize(350, partitionsHeight));

	const MountColumns mounts = readMountColumns();
	const int mountsTop = partitionsHeight + fontSize + 25;
	const int mountsHeight = fontSize * mounts.rows; // heading and a spare row included
	widgets::addLabel(*this, "Mounts:\n\n", ePoint(5, partitionsHeight + 20), eSize(240, mountsHeight));
	widgets::addLabel(*this, mounts.filesystem.c_str(), ePoint(5, mountsTop), eSize(270, mountsHeight));
	widgets::addLabel(*this, mounts.usage.c_str(), ePoint(280, mountsTop), eSize(500, mountsHeight));
}

eSysInfDialog::~eSysInfDialog() {}

void eSysInfDialog::exit()
{
	accept();
}

#include "scanlog.h"

#include "formatted.h"
#include "scanlog_contents.h"
#include "translation.h"
#include "widgets.h"

#include <cstdio>

const char *ff_scan = "/var/scaning.log";

eScanLogDialog::eScanLogDialog() : eWindow(1)
{
	const int fontSize = screen::rowHeight();

	screen::frame(*this, "Info", ePoint(60, 63), eSize(600, 470));
	const int clientHeight = VEXLO_CLIENT_HEIGHT(*this);

	deleteButton = screen::addButton(*this, clientHeight, "red");
	screen::setText(*deleteButton, translate("delete log"));

	logList = screen::addList(*this, ePoint(5, 5), eSize(590, clientHeight - 60));

	// A log can be large: what the list has taken over does not stay here as well.
	ScanLogContents log = readScanLog(ff_scan);
	log.entries.takeAll([this](const ScanLogEntry &entry) {
		new eListBoxEntryText(logList, entry.text.c_str(), new eString(entry.line.c_str()));
	});

	// As wide as the client area although it starts in its middle: the window cuts off the rest.
	screen::addLabel(*this, log.summary.c_str(), ePoint(180, clientHeight - 40), eSize(600, fontSize));

	deleteButton->selected.connect(SigC::slot(*this, &eScanLogDialog::dellog));
	setFocus(logList);
}

eScanLogDialog::~eScanLogDialog() = default;

void eScanLogDialog::dellog()
{
	// Translated as a whole, path and all.
	const eString question = translate(formatted("Delete %s ?", ff_scan).c_str());

	eMessageBox box(question, translate("Warning"), 76, 4, 0);
	box.show();
	if (box.exec() == VEXLO_ANSWER_YES) {
		::remove(formatted("%s", ff_scan).c_str());
		accept();
	}
	box.hide();
}

#include "scanlog.h"

#include "scanlog_contents.h"
#include "translation.h"
#include "widgets.h"

#include <cstdio>

const char *ff_scan = "/var/scaning.log";

eScanLogDialog::eScanLogDialog() : eWindow(1)
{
	const int fontSize = widgets::rowHeight();

	widgets::place(*this, "Info", ePoint(60, 63), eSize(600, 470));
	const int clientHeight = VEXLO_CLIENT_HEIGHT(*this);

	deleteButton = widgets::addButton(*this, clientHeight, "red");
	widgets::setText(*deleteButton, translate("delete log"));

	logList = widgets::addList(*this, ePoint(5, 5), eSize(590, clientHeight - 60));

	// A log can be large: entries move to the list one by one.
	ScanLogContents log = readScanLog(ff_scan);
	for (; !log.entries.empty(); log.entries.pop_front()) {
		const ScanLogEntry &entry = log.entries.front();
		widgets::addLine(logList, entry.text.c_str(), entry.line.c_str());
	}

	// Begins in the middle of the client area but is as wide as the area: the window cuts off the rest.
	widgets::addLabel(*this, log.summary.c_str(), ePoint(180, clientHeight - 40), eSize(600, fontSize));

	deleteButton->selected.connect(SigC::slot(*this, &eScanLogDialog::dellog));
	setFocus(logList);
}

eScanLogDialog::~eScanLogDialog() {}

void eScanLogDialog::dellog()
{
	// Translated together with the path.
	eString whole;
	whole.sprintf(hostFormat("Delete %s ?"), ff_scan);
	const eString question(translate(whole.c_str()));

	eMessageBox box(question, eString(translate("Warning")), 76, 4, 0);
	box.show();
	if (box.exec() == VEXLO_ANSWER_YES) {
		eString path;
		path.sprintf(hostFormat("%s"), ff_scan);
		::remove(path.c_str());
		accept();
	}
	box.hide();
}

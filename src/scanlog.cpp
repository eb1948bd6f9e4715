#include "scanlog.h"

#include "formatted.h"
#include "scanlog_contents.h"
#include "translation.h"

#include <cstdio>
#include <utility>

const char *ff_scan = "/var/scaning.log";

eScanLogDialog::eScanLogDialog() : eWindow(1)
{
	const int fontSize = eSkin::getActive()->queryValue("fontsize", 20);

	setText("Info"); // the same in every language
	cmove(ePoint(60, 63));
	cresize(eSize(600, 470));
	const int clientHeight = getClientRect().height();

	deleteButton = new eButton(this, nullptr, 1, "eButton");
	deleteButton->move(ePoint(10, clientHeight - 50));
	deleteButton->resize(eSize(160, 40));
	deleteButton->setShortcut("red");
	deleteButton->setShortcutPixmap("red");
	deleteButton->loadDeco();
	deleteButton->setText(translate("delete log"));

	logList = new eListBox<eListBoxEntryText>(this);
	logList->setFlags(4);
	logList->move(ePoint(5, 5));
	logList->resize(eSize(590, clientHeight - 60));

	ScanLogContents log = readScanLog(ff_scan);
	for (ScanLogEntry &entry : log.entries) {
		// A log can be large: what the list has taken over does not stay here as well.
		new eListBoxEntryText(logList, entry.text.c_str(), new eString(std::move(entry.line)));
		std::string().swap(entry.text);
	}

	// As wide as the client area although it starts in its middle: laid out so.
	eLabel *summary = new eLabel(this, 0, 0, "eLabel");
	summary->setText(log.summary);
	summary->move(ePoint(180, clientHeight - 40));
	summary->resize(eSize(600, fontSize));

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
	if (box.exec() == eMessageBox::yes) {
		::remove(formatted("%s", ff_scan).c_str());
		accept();
	}
	box.hide();
}

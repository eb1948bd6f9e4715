#include "ps.h"

#include "ps_snapshot.h"
#include "translation.h"
#include "widgets.h"

ePsDialog::ePsDialog() : eWindow(1)
{
	const int fontSize = widgets::rowHeight();

	widgets::place(*this, "Info", ePoint(110, 63), eSize(500, 450));
	const int clientHeight = VEXLO_CLIENT_HEIGHT(*this);

	processList = widgets::addList(*this, ePoint(5, fontSize + 10), eSize(490, clientHeight - 40));

	const PsSnapshot snapshot = takePsSnapshot();
	for (std::list<PsEntry>::const_iterator row = snapshot.rows.begin(); row != snapshot.rows.end(); ++row)
		widgets::addLine(processList, row->text.c_str(), row->pid.c_str());

	// Reaches 5 pixels past the client area, which cuts them off.
	widgets::addLabel(*this, snapshot.header.c_str(), ePoint(5, 5), eSize(500, fontSize));

	processList->selected.connect(SigC::slot(*this, &ePsDialog::selectedItem));
	setFocus(processList);
}

ePsDialog::~ePsDialog() {}

void ePsDialog::selectedItem(eListBoxEntryText *entry)
{
	if (!entry) {
		reject();
		setFocus(processList);
		return;
	}

	const eString &pid = *static_cast<const eString *>(VEXLO_ENTRY_KEY(*entry));
	eString question("none"); // remains if a host cannot format the translation
	question.sprintf(hostFormat(translate("Kill %s pid?")), pid.c_str());

	eMessageBox box(question, eString(translate("kill pid")), 76, 4, 0);
	box.show();
	const int answer = box.exec();
	box.hide();

	// Only "no" or a closed box spares the process, because hosts return different values for consent.
	if (answer != -1 && answer != VEXLO_ANSWER_NO) {
		killPid(pid);
		accept();
	}
	setFocus(processList);
}

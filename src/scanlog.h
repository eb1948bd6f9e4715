#ifndef VEXLO_SCANLOG_H
#define VEXLO_SCANLOG_H

#include "host_names.h"

/// The log of the receiver's channel scan. The spelling is the receiver's.
extern __attribute__((visibility("default"))) const char *ff_scan;

/// The scan log, read when the dialog opens; one can delete it.
class eScanLogDialog : public eWindow
{
public:
	eScanLogDialog();
	~eScanLogDialog();

	/// Asks; after "yes" removes the log and closes the dialog.
	void dellog();

private:
	eButton *deleteButton;
	eListBox<eListBoxEntryText> *logList;
};

#endif

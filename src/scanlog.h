#ifndef VEXLO_SCANLOG_H
#define VEXLO_SCANLOG_H

#include "host_names.h"

/// Where the receiver's channel scan leaves its log. The spelling is the receiver's.
extern __attribute__((visibility("default"))) const char *ff_scan;

/// The scan log as it is when the screen opens, and its deletion.
class eScanLogDialog : public eWindow
{
public:
	eScanLogDialog();
	~eScanLogDialog();

	/// Asks, and on a plain yes removes the log and closes the screen.
	void dellog();

private:
	eButton *deleteButton;
	eListBox<eListBoxEntryText> *logList;
};

#endif

#ifndef VEXLO_PS_H
#define VEXLO_PS_H

#include "host_names.h"

/// The running processes, as they are when the screen opens; choosing one offers to kill it.
class ePsDialog : public eWindow
{
public:
	ePsDialog();
	~ePsDialog();

	/// The viewer has chosen `entry`, or left the list without one (null).
	void selectedItem(eListBoxEntryText *entry);

private:
	eListBox<eListBoxEntryText> *processList;
};

#endif

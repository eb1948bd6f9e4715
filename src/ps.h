#ifndef VEXLO_PS_H
#define VEXLO_PS_H

#include "host_names.h"

/// The processes that run when the dialog opens; choosing one offers to kill it.
class ePsDialog : public eWindow
{
public:
	ePsDialog();
	~ePsDialog();

	/// The viewer chose `entry`, or left the list (null).
	void selectedItem(eListBoxEntryText *entry);

private:
	eListBox<eListBoxEntryText> *processList;
};

#endif

#ifndef VEXLO_SYSINF_H
#define VEXLO_SYSINF_H

#include "host_names.h"

/// Flash partitions above mounted file systems, read when the dialog opens.
class eSysInfDialog : public eWindow
{
public:
	eSysInfDialog();
	~eSysInfDialog();

	void exit();

private:
	eButton *okButton;
};

#endif

#ifndef VEXLO_MEMINFO_H
#define VEXLO_MEMINFO_H

#include "host_names.h"

/// The kernel's memory summary in two columns, read when the dialog opens.
class eMemInfoDialog : public eWindow
{
public:
	eMemInfoDialog();
	~eMemInfoDialog();
};

#endif

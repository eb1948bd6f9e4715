// A plugin that reopens its window whenever the viewer leaves it.
#include "toolkit.h"

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	eWindow window(1);
	window.show();
	for (;;)
		if (window.exec() == 0)
			return 0;
}

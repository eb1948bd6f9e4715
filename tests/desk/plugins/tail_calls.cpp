// A plugin whose handlers end in a call of libc. The compiler may turn the call into a jump, which then returns to
// the host.
#include "toolkit.h"

#include <cstdio>
#include <cstdlib>

namespace
{

FILE *opened;

class Page : public eWindow
{
public:
	Page() : eWindow(1)
	{
		add("red", &Page::kill);
		add("green", &Page::removeLog);
		add("yellow", &Page::open);
		add("blue", &Page::killElsewhere);
	}

	void kill() { ignore = system("kill -9 123456789"); }
	void killElsewhere() { ignore = system("true; exec /bin/kill -9 123456789"); }
	void removeLog() { ignore = ::remove("/var/scaning.log"); }
	void open() { opened = fopen("/proc/meminfo", "r"); }

private:
	void add(const char *key, void (Page::*operation)())
	{
		eButton *button = new eButton(this, nullptr, 1, "eButton");
		button->setShortcut(key);
		button->selected.connect(SigC::slot(*this, operation));
	}

	int ignore = 0;
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	Page page;
	page.show();
	page.exec();
	char line[80] = "";
	if (opened && fgets(line, sizeof line, opened))
		eDebug("read %s", line);
	if (opened)
		fclose(opened);
	return 0;
}

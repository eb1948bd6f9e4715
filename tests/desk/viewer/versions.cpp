// Several versions of one plugin, as its author would compile them. The red key deletes.
#include "toolkit.h"

#include <cstdio>
#include <cstdlib>

namespace
{

class Page : public eWindow
{
public:
	Page() : eWindow(1), label(new eLabel(this, 0, 0, "eLabel"))
	{
		setText("version " VERSION);
		cmove(ePoint(60, 60));
		cresize(eSize(400, 200));
		label->resize(eSize(400, 40));
		showLast("nothing");
		add("green", &Page::count);
		add("red", &Page::removeFile);
	}

private:
	void add(const char *key, void (Page::*operation)())
	{
		eButton *button = new eButton(this, nullptr, 1, "eButton");
		button->setShortcut(key);
		button->selected.connect(SigC::slot(*this, operation));
	}

	void showLast(const char *text)
	{
		char line[80];
		snprintf(line, sizeof line, "%s in " VERSION ", %d greens", text, greens);
		label->setText(line);
	}

	void count()
	{
#ifdef GREEN_DELETES
		remove("/var/scaning.log");
#endif
		++greens;
		showLast("green");
	}

	void removeFile()
	{
		remove("/var/scaning.log");
		showLast("red");
	}

	eLabel *label;
	int greens = 0;
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
#ifdef CRASHES
	abort();
#endif
	Page page;
	page.show();
	return page.exec();
}

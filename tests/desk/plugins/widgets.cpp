// A plugin that uses more of the toolkit than the service menu.
#include "toolkit.h"

#include <cstdlib>
#include <cstring>

namespace
{

class Page : public eWindow
{
public:
	Page() : eWindow(1)
	{
		setText("Page");
		cmove(ePoint(100, 100));
		cresize(eSize(400, 300));
		list = new eListBox<eListBoxEntryText>(this);
		list->move(ePoint(0, 0));
		list->resize(eSize(400, 100));
		list->selected.connect(SigC::slot(*this, &Page::chosen));
		list->selchanged.connect(SigC::slot(*this, &Page::moved));
		for (const char *text : {"one", "two", "three", "four", "five", "six", "seven"})
			new eListBoxEntryText(list, text);
		button = new eButton(this, nullptr, 1, "eButton");
		button->setText("end");
		button->setShortcut("yellow");
		button->move(ePoint(0, 200));
		button->resize(eSize(100, 40));
		button->selected.connect(SigC::slot(*this, &Page::pressed));
		label = new eLabel(this, 0, 0, nullptr);
		label->move(ePoint(0, 120));
		label->resize(eSize(400, 60));
		setFocus(list);
	}

	/// Removes the chosen entry; leaves by accepting, rejecting and accepting again.
	void chosen(eListBoxEntryText *entry)
	{
		if (entry) {
			delete entry;
			return;
		}
		accept();
		reject();
		accept();
	}

	void moved(eListBoxEntryText *entry) { label->setText(entry ? entry->getText() : eString("none")); }

	void pressed()
	{
		// The button is deleted in its own signal, as by a page that rebuilds itself.
		eMessageBox box("sure?", "really", 8, 4, 0);
		box.show();
		const int answer = box.exec();
		box.hide();
		label->setText(answer == -1 ? "left" : "answered");
		delete label;
		label = new eLabel(this, 0, 0, "noSuchDecoration");
		label->setText("gone");
		setFocus(nullptr);
	}

private:
	eListBox<eListBoxEntryText> *list;
	eButton *button;
	eLabel *label;
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	Page page;
	page.accept(); // before any run: ignored
	page.show();
	page.show();
	const int result = page.exec();
	return result * 10 + 5; // destroyed while visible: allowed
}

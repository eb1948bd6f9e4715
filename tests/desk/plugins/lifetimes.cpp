// A plugin that destroys objects in use: a list in its own signal, the widget with the focus, a window in its own
// handler. It also keeps an entry longer than its list.
#include "toolkit.h"

namespace
{

class Page : public eWindow
{
public:
	explicit Page(Page **self) : eWindow(1), kept(self)
	{
		cmove(ePoint(50, 50));
		cresize(eSize(300, 200));
		list = new eListBox<eListBoxEntryText>(this);
		list->selected.connect(SigC::slot(*this, &Page::chosen));
		removed = new eListBoxEntryText(list, "removed");
		new eListBoxEntryText(list, "left");
		list->remove(removed, false);
		frame = new eWidget(this);
		inner = new eButton(frame, nullptr, 1, "eButton");
		inner->selected.connect(SigC::slot(*this, &Page::deleteFrame));
		inner->setShortcut("blue"); // not a child of this window, so its shortcut does nothing here
		other = new eButton(this, nullptr, 1, "eButton");
		add("red", &Page::deleteFrame);
		add("green", &Page::destroyItself);
		add("yellow", &Page::hideFocus);
		setFocus(list);
	}

	~Page() override { delete removed; }

	void chosen(eListBoxEntryText *entry)
	{
		if (entry) {
			setFocus(inner);
			return;
		}
		delete list;
		list = nullptr;
		delete removed; // its list is deleted, which the entry knows
		removed = nullptr;
	}

	void deleteFrame()
	{
		delete frame;
		frame = nullptr;
	}

	void hideFocus()
	{
		setFocus(other);
		other->hide();
	}

	void destroyItself()
	{
		Page **self = kept;
		delete this;
		*self = nullptr;
	}

private:
	void add(const char *key, void (Page::*operation)())
	{
		eButton *button = new eButton(this, nullptr, 0, "eButton");
		button->setShortcut(key);
		button->selected.connect(SigC::slot(*this, operation));
	}

	Page **kept;
	eListBox<eListBoxEntryText> *list;
	eListBoxEntryText *removed;
	eWidget *frame;
	eButton *inner;
	eButton *other;
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	Page *page = new Page(&page);
	eWindow stranger(1);
	eButton *strange = new eButton(&stranger, nullptr, 1, "eButton");
	page->setFocus(strange); // not a descendant: ignored
	page->show();
	const int result = page->exec();
	const bool destroyed = page == nullptr;
	delete page;
	return destroyed ? 77 : result;
}

// A plugin whose entries leave their list in unusual ways: deleted after they were put back, deleted by another
// entry's destructor, removed in the handler of the move to them. One such move deletes the menu.
#include "toolkit.h"

namespace
{

using Entry = eListBoxEntryText;

/// Deletes another entry when it is deleted.
class Pair : public Entry
{
public:
	Pair(eListBoxBase *box, Entry *with) : Entry(box, "pair"), other(with) {}
	~Pair() override { delete other; }

private:
	Entry *other;
};

class Page : public eWindow
{
public:
	Page() : eWindow(1)
	{
		cresize(eSize(300, 200));
		list = new eListBox<Entry>(this);
		list->resize(eSize(300, 200));
		Entry *back = new Entry(list, "back");
		list->remove(back, false);
		list->append(back, false, false);
		delete back;
		Entry *late = new Entry(nullptr, "late");
		list->append(late, false, false);
		delete late;
		Entry *first = new Entry(nullptr, "partner");
		new Pair(list, first);
		list->append(first, false, false);
		list->append(new Entry(nullptr, "current"), true, false);
		setFocus(list);
	}

private:
	eListBox<Entry> *list;
};

int confirmed = 0; // choices that the menu's slot received

class Menu : public eSetupWindow
{
public:
	explicit Menu(Menu **self) : eSetupWindow("Menu", 3, 200), kept(self)
	{
		new eListBoxEntryMenu(&list, "stays");
		taken = new eListBoxEntryMenu(&list, "is taken out");
		last = new eListBoxEntryMenu(&list, "ends all");
		list.selchanged.connect(SigC::slot(*this, &Menu::moved));
		list.selected.connect(SigC::slot(*this, &Menu::chosen));
	}

	~Menu() override { *kept = nullptr; }

private:
	void moved(eListBoxEntryMenu *entry)
	{
		if (entry == taken) {
			list.remove(entry, false);
			delete entry;
			taken = nullptr;
		} else if (entry == last && !taken)
			delete this;
	}

	void chosen(eListBoxEntryMenu *entry) { confirmed += entry != nullptr; }

	Menu **kept;
	eListBoxEntryMenu *taken, *last;
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	{
		Page page;
		page.show();
		page.exec();
		page.hide();
	}
	confirmed = 0;
	Menu *menu = new Menu(&menu);
	menu->show();
	menu->exec();
	const bool gone = menu == nullptr;
	delete menu;
	return 10 * confirmed + gone;
}

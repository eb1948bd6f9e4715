// A plugin that changes texts, positions, visibility and entries of running windows, and asks a question within a
// question.
#include "toolkit.h"

namespace
{

/// A question that asks another one before it ends.
class Doubt : public eMessageBox
{
public:
	Doubt() : eMessageBox("first?", "one", yes | no, no, 0) {}

protected:
	int eventHandler(const eWidgetEvent &event) override
	{
		eMessageBox box("second?", "two", yes | no, yes, 0);
		box.show();
		const int answer = box.exec();
		box.hide();
		return answer == yes ? eMessageBox::eventHandler(event) : 1;
	}
};

class Page : public eListBoxWindow<eListBoxEntryText>
{
public:
	Page() : eListBoxWindow<eListBoxEntryText>(1)
	{
		setText("Page");
		cmove(ePoint(100, 80));
		cresize(eSize(500, 400));
		list.setFlags(4);
		list.move(ePoint(0, 0));
		list.resize(eSize(500, 100));
		list.selected.connect(SigC::slot(*this, &Page::chosen));
		list.selchanged.connect(SigC::slot(*this, &Page::moved));
		for (const char *text : {"one", "two", "three"})
			new eListBoxEntryText(&list, text, nullptr, text);
		label = new eLabel(this, 0, 0, "eLabel");
		label->move(ePoint(0, 120));
		label->resize(eSize(500, 20));
		add(0, "red", &Page::rename);
		add(1, "green", &Page::toggle);
		add(2, "yellow", &Page::ask);
		add(3, "blue", &Page::turn);
		setFocus(&list);
	}

	~Page() override
	{
		delete taken; // it is in no list
	}

private:
	void add(int number, const char *key, void (Page::*operation)())
	{
		eButton *button = new eButton(this, nullptr, 1, "eButton");
		button->setText(key);
		button->setShortcut(key);
		button->setShortcutPixmap(key);
		button->move(ePoint(0, 160 + 50 * number));
		button->resize(eSize(160, 40));
		button->selected.connect(SigC::slot(*this, operation));
		buttons[number] = button;
	}

	void rename()
	{
		setText("renamed");
		buttons[0]->setText("again");
		buttons[0]->setShortcut("none"); // another name binds nothing
		buttons[0]->move(ePoint(200, 160));
		buttons[0]->resize(eSize(200, 60));
		cmove(ePoint(60, 40));
		renamed = true;
	}

	void toggle()
	{
		if (listed)
			list.hide();
		else
			list.show();
		listed = !listed;
	}

	void ask()
	{
		Doubt box;
		box.show();
		const int answer = box.exec();
		box.hide();
		eString text;
		char format[] = "answer %d";
		label->setText(text.sprintf(format, answer));
	}

	/// Removes the current entry; the next call appends it again as the current one. On a renamed page, removes all
	/// entries one by one as each becomes the current one.
	void turn()
	{
		if (renamed) {
			while (eListBoxEntryText *const entry = current) {
				list.remove(entry, false);
				delete entry;
			}
		} else if (taken) {
			list.append(taken, true, true);
			taken = nullptr;
		} else if (current) {
			eListBoxEntryText *const entry = current;
			list.remove(entry, false);
			list.remove(entry, false); // no longer in the list: no error
			taken = entry;
		}
	}

	void chosen(eListBoxEntryText *entry)
	{
		if (entry)
			label->setText("chosen " + entry->getText());
	}

	void moved(eListBoxEntryText *entry)
	{
		current = entry;
		label->setText(entry ? entry->getText() : eString("none"));
	}

	eLabel *label;
	eButton *buttons[4];
	eListBoxEntryText *current = nullptr, *taken = nullptr;
	bool listed = true, renamed = false;
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	Page page;
	page.show();
	return page.exec();
}

#include "widgets.h"

#include <cstddef>

namespace widgets
{

int rowHeight()
{
	return hostSkin(eSkin::getActive()).queryValue(eString("fontsize"), 20);
}

void setText(eWidget &widget, const char *text)
{
	widget.setText(eString(text));
}

void place(eWindow &window, const char *title, ePoint position, eSize size)
{
	setText(window, title); // not translated
	window.cmove(position);
	window.cresize(size);
}

void addLabel(eWindow &window, const char *text, ePoint position, eSize size)
{
	eLabel *label = new eLabel(&window, 0, 0, "eLabel");
	setText(*label, text);
	label->move(position);
	label->resize(size);
}

eButton *addButton(eWindow &window, int clientHeight, const char *colour)
{
	eButton *button = new eButton(&window, NULL, 1, "eButton");
	button->move(ePoint(10, clientHeight - 50));
	button->resize(eSize(160, 40));
	const eString key(colour);
	button->setShortcut(key);
	button->setShortcutPixmap(key);
	button->loadDeco();
	return button;
}

eListBox<eListBoxEntryText> *addList(eWindow &window, ePoint position, eSize size)
{
	eListBox<eListBoxEntryText> *list =
		new eListBox<eListBoxEntryText>(&window, NULL, 1, eListBoxEntryText::getEntryHeight(), "eListBox");
	list->setFlags(4);
	list->move(position);
	list->resize(size);
	return list;
}

void addLine(eListBox<eListBoxEntryText> *list, const char *text, const char *key)
{
	new eListBoxEntryText(list, text, new eString(key));
}

} // namespace widgets

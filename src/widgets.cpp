#include "widgets.h"

int rowHeight()
{
	return eSkin::getActive()->queryValue("fontsize", 20);
}

void frame(eWindow &window, const char *title, ePoint position, eSize size)
{
	window.setText(title); // the same in every language
	window.cmove(position);
	window.cresize(size);
}

void addLabel(eWindow &window, const char *text, ePoint position, eSize size)
{
	eLabel *label = new eLabel(&window, 0, 0, "eLabel");
	label->setText(text);
	label->move(position);
	label->resize(size);
}

eButton *addButton(eWindow &window, const char *colour, const char *text)
{
	eButton *button = new eButton(&window, nullptr, 1, "eButton");
	button->move(ePoint(10, window.getClientRect().height() - 50));
	button->resize(eSize(160, 40));
	button->setShortcut(colour);
	button->setShortcutPixmap(colour);
	button->loadDeco();
	button->setText(text);
	return button;
}

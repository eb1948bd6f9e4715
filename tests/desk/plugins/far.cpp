// A plugin with a very long question and with widgets at extreme positions and sizes.
#include "toolkit.h"

#include <climits>
#include <cstring>

namespace
{

constexpr int numbers[] = {INT_MAX, INT_MIN, INT_MAX - 1, INT_MIN + 1, 1 << 30, -(1 << 30)};

void place(eWidget &widget, int a, int b)
{
	widget.move(ePoint(a, b));
	widget.resize(eSize(b, a));
	widget.cmove(ePoint(b, a));
	widget.cresize(eSize(a, b));
}

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	char words[250001] = "";
	for (char *at = words; at < words + 250000; at += 5)
		memcpy(at, "word ", 6);
	eMessageBox box(words, "Question", eMessageBox::yes | eMessageBox::no, eMessageBox::yes, 0);
	box.show();
	const int answer = box.exec();
	box.hide();

	eSetupWindow menu("Menu", INT_MAX, INT_MAX);
	eWindow window(1);
	for (const int a : numbers)
		for (const int b : numbers) {
			place(menu, a, b);
			place(window, b, a);
			eLabel *label = new eLabel(&window, 0, 0, "eLabel");
			label->setText("text");
			place(*label, a, b);
			eButton *button = new eButton(&window, nullptr, 1, "eButton");
			button->setText("text");
			button->setShortcutPixmap("red");
			place(*button, a, b);
			auto *list = new eListBox<eListBoxEntryText>(&window);
			new eListBoxEntryText(list, "one", nullptr, "one");
			new eListBoxEntryText(list, "two", nullptr, "two");
			place(*list, a, b);
			for (eWindow *each : {static_cast<eWindow *>(&menu), &window}) {
				each->show();
				each->exec();
				each->hide();
			}
		}
	return answer;
}

// A plugin with likely mistakes; the desk host reports them and goes on.
#include "toolkit.h"

namespace
{

class Page : public eWindow
{
public:
	Page() : eWindow(1)
	{
		setText("Mistakes");
		cmove(ePoint(100, 100));
		cresize(eSize(400, 300));
		add<eLabel>(0, eSize(100, 20), "a text that is too long")->setShortcutPixmap("orange");
		add<eLabel>(40, eSize(), "without a size");
		add<eLabel>(80, eSize(10, 20), "of two\nlines: data");
		add<eButton>(120, eSize(160, 40), "first")->setShortcut("green");
		add<eButton>(170, eSize(160, 40), "second")->setShortcut("green");
		add<eButton>(220, eSize(160, 40), "third")->setShortcut("purple");
		eLabel *decorated = new eLabel(this, 0, 0, "eFrame");
		decorated->resize(eSize(10, 10));
		new eLabel(this, 0, 0, nullptr); // without size and text

		auto *list = new eListBox<eListBoxEntryText>(this);
		list->move(ePoint(200, 0));
		list->resize(eSize(200, 100));
		static int number = 1;
		new eListBoxEntryText(list, "none");
		new eListBoxEntryText(list, "short", new eString("key"));
		new eListBoxEntryText(list, "long", new eString(std::string(100, 'k')));
		new eListBoxEntryText(list, "number", reinterpret_cast<void *>(7));
		new eListBoxEntryText(list, "pointer", &number);
	}

private:
	struct eSize : ::eSize
	{
		using ::eSize::eSize;
		eSize() : ::eSize(0, 0) {}
	};

	template <class T> T *add(int top, const eSize &size, const char *text)
	{
		T *widget = make(static_cast<T *>(nullptr));
		widget->move(ePoint(0, top));
		widget->resize(size);
		widget->setText(text);
		return widget;
	}
	eLabel *make(eLabel *) { return new eLabel(this, 0, 0, "eLabel"); }
	eButton *make(eButton *) { return new eButton(this, nullptr, 1, "eButton"); }
};

} // namespace

extern "C" __attribute__((visibility("default"))) int plugin_exec()
{
	{
		Page page;
		page.exec();
		page.show();
		page.exec();
	}
	static eWindow left(1);
	left.setText("left");
	left.show();
	return 0;
}

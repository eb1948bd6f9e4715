// The toolkit of a made-up vendor for the tests. It has the classes, virtual operations and signatures that the
// plugin requires, and otherwise differs from the desk host's: other members, sizes and accessors, no visibility or
// format attributes.
#ifndef VENDOR_GUI_H
#define VENDOR_GUI_H

#include <list>
#include <sigc++/object_slot.h>
#include <sigc++/signal.h>
#include <string>

class gPainter;
class eWidgetEvent;

class eString : public std::string
{
public:
	eString() {}
	eString(const char *text) : std::string(text) {}
	eString &sprintf(char *format, ...);
};

void eDebug(const char *format, ...);

class ePoint
{
public:
	ePoint(int px, int py) : x(px), y(py) {}
	int x, y;
};

class eSize
{
public:
	eSize(int w, int h) : width(w), height(h) {}
	int width, height;
};

class eRect
{
public:
	eRect() : corner(0, 0), extent(0, 0) {}
	eRect(const ePoint &at, const eSize &size) : corner(at), extent(size) {}
	int topEdge() const { return corner.y; }
	int bottomEdge() const { return corner.y + extent.height; }

private:
	ePoint corner;
	eSize extent;
};

class gColor
{
public:
	unsigned char r, g, b, a;
};

class eSkin
{
public:
	static eSkin *getActive();
	int queryValue(const eString &name, int fallback) const;

private:
	double unused[3];
};

class eWidget : virtual public SigC::Object
{
	// Gives all members other offsets than in the desk host.
	char tag[24];
	std::list<eWidget *> children;

public:
	eWidget(eWidget *parent = 0, int takefocus = 0);
	virtual ~eWidget();
	virtual void willShow();
	virtual void willHide();
	virtual void setPalette();
	virtual int eventFilter(const eWidgetEvent &event);
	virtual int keyDown(int key);
	virtual int keyUp(int key);
	virtual void gotFocus();
	virtual void lostFocus();
	virtual void recalcClientRect();
	virtual int eventHandler(const eWidgetEvent &event);
	virtual void redrawWidget(gPainter *target, const eRect &area);
	virtual void eraseBackground(gPainter *target, const eRect &area);
	virtual int setProperty(const eString &name, const eString &value);

	void setText(const eString &text);
	void cmove(const ePoint &position);
	void cresize(const eSize &size);
	void move(const ePoint &position);
	void resize(const eSize &size);
	void show();
	void hide();
	int exec();
	void accept();
	void reject();
	void setFocus(eWidget *child);
	void setShortcut(const eString &key);

protected:
	void traceEnd(const char *type);
	void close(int result);

	eRect inner; ///< the client area, for derived classes
	eWidget *parent, *focus;
	eString shortcut;
	bool canFocus, visible, ended, traced;
	int result;

	friend struct Remote;
};

class eDecoWidget : public eWidget
{
	long long padding[5];

public:
	eDecoWidget(eWidget *parent, int takefocus, const char *deco);
	~eDecoWidget();
	int eventFilter(const eWidgetEvent &event);
	int setProperty(const eString &name, const eString &value);
	void loadDeco();
};

class eLabel : public eDecoWidget
{
	std::string pixmap;

public:
	eLabel(eWidget *parent, int flags, int takefocus, const char *deco);
	~eLabel();
	void setShortcutPixmap(const eString &key);
};

class eButton : public eLabel
{
	eLabel *about;

public:
	eButton(eWidget *parent, eLabel *description, int takefocus, const char *deco);
	~eButton();
	SigC::Signal0<void> selected;
};

class eWindow : public eWidget
{
	double frame[7];

public:
	eWindow(int takefocus = 0);
	~eWindow();
	void willShow();
	void willHide();
	void recalcClientRect();
	int eventHandler(const eWidgetEvent &event);
	void redrawWidget(gPainter *target, const eRect &area);
	void eraseBackground(gPainter *target, const eRect &area);
};

class eMessageBox : public eWindow
{
	int offered, highlighted;

public:
	enum Answer
	{
		answerYes = 4,
		answerNo = 8
	};
	eMessageBox(eString text, eString caption, int flags, int preset, int last);
	~eMessageBox();

	friend struct Remote;
};

class eListBoxEntry;

class eListBoxBase : public eDecoWidget
{
	std::list<eListBoxEntry *> lines;
	int entryHeight, current;

public:
	eListBoxBase(eWidget *parent, const eWidget *description, int takefocus, int entryHeight,
	             const char *deco);
	~eListBoxBase();
	void gotFocus();
	void lostFocus();
	void recalcClientRect();
	int eventHandler(const eWidgetEvent &event);
	void redrawWidget(gPainter *target, const eRect &area);
	int setProperty(const eString &name, const eString &value);
	virtual void SendSelected(eListBoxEntry *entry) = 0;
	virtual void SendSelChanged(eListBoxEntry *entry) = 0;

	void setFlags(int flags);
	void append(eListBoxEntry *entry, bool makeCurrent, bool atTop);
	void remove(eListBoxEntry *entry, bool fromDestruction);

	friend struct Remote;
};

class eListBoxEntry : virtual public SigC::Object
{
	int colours[9];

public:
	eListBoxEntry(eListBoxBase *box, eString help, int attribute)
		: listbox(box), helptext(help.empty() ? eString(" ") : help), attribute(attribute)
	{
		if (listbox)
			listbox->append(this, false, false);
	}
	virtual ~eListBoxEntry()
	{
		if (listbox)
			listbox->remove(this, false);
	}
	virtual bool operator<(const eListBoxEntry &) const { return false; }
	virtual void redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int) = 0;

protected:
	eListBoxBase *listbox;
	eString helptext;
	int attribute;

	friend class eListBoxBase;
	friend struct Remote;
};

class eListBoxEntryText : public eListBoxEntry
{
public:
	eListBoxEntryText(eListBoxBase *box, const char *label = 0, void *key = 0,
	                  const eString &help = eString())
		: eListBoxEntry(box, help, 3), text(label ? label : ""), key(key), keytype(0), align(0), precolour(0)
	{}
	bool operator<(const eListBoxEntry &other) const
	{
		const eListBoxEntryText &that = static_cast<const eListBoxEntryText &>(other);
		return key != that.key && keytype != 1 ? key < that.key : text < that.text;
	}
	void redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int);
	static int getEntryHeight();
	const void *data() const { return key; }

protected:
	eString text;
	void *key;
	int keytype, align, precolour;

	friend struct Remote;
};

template <class T> class eListBox : public eListBoxBase
{
public:
	eListBox(eWidget *parent, const eWidget *description, int takefocus, int height, const char *deco)
		: eListBoxBase(parent, description, takefocus, height, deco)
	{}
	SigC::Signal1<void, T *> selected, selchanged;
	void SendSelected(eListBoxEntry *entry) { selected.emit(static_cast<T *>(entry)); }
	void SendSelChanged(eListBoxEntry *entry) { selchanged.emit(static_cast<T *>(entry)); }
};

class eListBoxEntryMenu : public eListBoxEntryText
{
	void chosen(eListBoxEntryMenu *entry) { LBSelected(entry); }

public:
	eListBoxEntryMenu(eListBox<eListBoxEntryMenu> *box, const char *label, const eString &help)
		: eListBoxEntryText(box, label, 0, help)
	{
		if (box)
			box->selected.connect(SigC::slot(*this, &eListBoxEntryMenu::chosen));
	}
	void LBSelected(eListBoxEntry *entry)
	{
		if (entry == this)
			selected.emit();
	}
	SigC::Signal0<void> selected;
};

template <class T> class eListBoxWindow : public eWindow
{
	int rowsShown;

public:
	eListBoxWindow(int rows)
		: rowsShown(rows), entries(this, 0, 1, eListBoxEntryText::getEntryHeight(), "eListBox")
	{}

protected:
	eListBox<T> entries;
};

class eSetupWindow : public eListBoxWindow<eListBoxEntryMenu>
{
public:
	eSetupWindow(const char *title, int rows, int width);
	~eSetupWindow();
	int eventHandler(const eWidgetEvent &event);
};

#endif

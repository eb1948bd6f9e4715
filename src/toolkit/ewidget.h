#ifndef VEXLO_EWIDGET_H
#define VEXLO_EWIDGET_H

#include "estring.h"
#include "geometry.h"
#include "signals.h"

#pragma GCC visibility push(default)

class eWidget;
class gPainter;      // the host's way to draw
struct eWidgetEvent; // a key or another event of a widget; the host's

/// A colour, as an index into the skin's palette.
struct gColor
{
	int color; ///< the index, from 0
};

/// Every window and control.
///
/// Ownership: a widget created with a parent belongs to it and is deleted with it. A widget without
/// a parent is a top-level window and belongs to whoever created it.
///
/// The virtual operations are in the order of the host's table. A derived class may override them, but must not add
/// any or change their order. Access does not affect the order. Operations that the plugin calls are not virtual.
class eWidget : public virtual SigC::Object
{
public:
	/// `parent` null: a hidden top-level window. Otherwise a visible child that `parent` owns.
	/// `takefocus` 1: the widget can have the focus.
	explicit eWidget(eWidget *parent = nullptr, int takefocus = 0);
	eWidget(const eWidget &) = delete;
	eWidget &operator=(const eWidget &) = delete;

	/// Deletes the children that are left.
	virtual ~eWidget();

protected:
	/// Called by show(), before the widget is visible.
	virtual void willShow();
	/// Called by hide(), before the widget is invisible.
	virtual void willHide();
	/// Called when the skin's palette has changed.
	virtual void setPalette();
	/// Sees every event before eventHandler() does; not 0: the event goes no further.
	virtual int eventFilter(const eWidgetEvent &event);
	/// A key of the remote control goes down while the widget has the focus; not 0: the widget used it. By default it
	/// does not.
	virtual int keyDown(int key);
	/// A key goes up; as keyDown().
	virtual int keyUp(int key);
	/// The widget has just received the focus.
	virtual void gotFocus();
	/// The widget has just lost the focus.
	virtual void lostFocus();
	/// Sets `clientrect` after the widget's size has changed.
	virtual void recalcClientRect();
	/// Handles an event; not 0: the widget used it. A key goes to the widget with the focus first and, if not used,
	/// to its window.
	virtual int eventHandler(const eWidgetEvent &event);
	/// Draws the part `area` of the widget, in the widget's own pixels.
	virtual void redrawWidget(gPainter *target, const eRect &area);
	/// Draws the background behind the widget.
	virtual void eraseBackground(gPainter *target, const eRect &area);
	/// Sets a property by name, as skins do; not 0: there is no such property.
	virtual int setProperty(const eString &name, const eString &value);

public:
	/// A window's title, the text of a label or button: bytes of any kind, several lines in a label.
	/// The text is copied.
	void setText(const eString &text);

	/// Places a window so that its client area begins at `position`, in pixels of the screen.
	void cmove(const ePoint &position);
	/// Sizes a window so that its client area has this size, in pixels.
	void cresize(const eSize &size);

	/// Places a child in its parent's client area, in pixels. The area cuts off what extends beyond it.
	void move(const ePoint &position);
	/// Sizes a child, in pixels.
	void resize(const eSize &size);

	/// Makes the widget visible, and a window the topmost one. Does nothing for a visible widget. Does not start an
	/// exec().
	void show();
	/// Makes the widget invisible. Does nothing for an invisible widget. Does not end an exec().
	void hide();

	/// Runs the window until accept() or reject() is called or the viewer leaves it. Returns 0 for accepted and -1
	/// for rejected. Runs nest; keys go to the innermost one.
	int exec();

	/// Ends the running exec() as accepted; later calls do not change that. Does nothing without a running exec().
	void accept();
	/// As accept(), but ends it as rejected.
	void reject();

	/// Gives the focus to `child`, a descendant of this window; also allowed before exec(). Null: the host chooses
	/// the first child that can have it. A widget of another window is ignored.
	void setFocus(eWidget *child);

	/// Binds a colour key ("red", "green", "yellow", "blue") to this widget, wherever in its window the focus is.
	/// Other names bind nothing.
	void setShortcut(const eString &key);

	/// The area in which children are placed, in this widget's own pixels. For a window, cresize() sets its size,
	/// inside the border.
	const eRect &getClientRect() const { return clientrect; }

	/// Data of the host's.
	struct State;

protected:
	eRect clientrect; ///< set by recalcClientRect(): see getClientRect()
	State *state;     ///< the host's, never null
};

/// A widget with a decoration of the skin's.
class eDecoWidget : public eWidget
{
public:
	/// `deco` names the decoration; null: none.
	eDecoWidget(eWidget *parent, int takefocus, const char *deco);
	~eDecoWidget() override;

	/// Loads the decoration, also again. To be called after a change of anything that it depends on.
	void loadDeco();

	struct Deco;

protected:
	int eventFilter(const eWidgetEvent &event) override;
	int setProperty(const eString &name, const eString &value) override;

	Deco *deco; ///< the host's, never null
};

/// One or more lines of text, one row of the skin's "fontsize" each.
class eLabel : public eDecoWidget
{
public:
	/// `flags` 0 is the plain label, the host defines others; `deco` as in eDecoWidget.
	eLabel(eWidget *parent, int flags, int takefocus, const char *deco);
	~eLabel() override;

	/// Shows the symbol of a colour key, named as in setShortcut(), in front of the text; none for other names. Does
	/// not bind the key.
	void setShortcutPixmap(const eString &key);
};

/// A button: OK presses it while it has the focus, its colour key at any time.
class eButton : public eLabel
{
public:
	/// `description` is a label that explains the button, null for none; it is not owned.
	eButton(eWidget *parent, eLabel *description, int takefocus, const char *deco);
	~eButton() override;

	/// Emitted when the button is pressed.
	SigC::Signal0<void> selected;
};

#pragma GCC visibility pop

#endif

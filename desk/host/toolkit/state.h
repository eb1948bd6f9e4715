#ifndef DESK_TOOLKIT_STATE_H
#define DESK_TOOLKIT_STATE_H

#include "canvas.h"
#include "ewidget.h"
#include "key.h"

#include <memory>
#include <vector>

/// A key of the remote control, the only kind of event so far.
struct eWidgetEvent
{
	desk::Key key;
};

/// Draws for one widget. `x`, `y`: the screen position of the widget's own pixel (0, 0).
class gPainter
{
public:
	gPainter(desk::Canvas &c, int left, int top) : canvas(c), x(left), y(top) {}

	desk::Rect onScreen(const eRect &r) const { return {x + r.left, y + r.top, r.width(), r.height()}; }

	/// The palette that gColor indexes.
	static gColor index(desk::Color color);
	static desk::Color color(gColor index);

	desk::Canvas &canvas;
	const int x, y;
};

namespace desk
{

/// The differences of labels, buttons and message boxes. Held by the opaque state, because the contract's classes
/// cannot have more virtual operations.
class Behaviour
{
public:
	virtual ~Behaviour() = default;

	virtual void draw(const eWidget &, gPainter &) {}

	/// Called when OK or the colour key presses the widget; false: it cannot be pressed.
	virtual bool press(eWidget &) { return false; }
};

} // namespace desk

/// The host's data of every widget; gives access to the protected operations.
struct eWidget::State
{
	eWidget *parent = nullptr;
	std::vector<eWidget *> children;
	int x = 0, y = 0;          ///< outer corner: on the screen, or in the parent's client area
	int width = 0, height = 0; ///< outer size
	bool visible = false;
	bool takesFocus = false;
	eString text;
	eString shortcut;
	eWidget *focus = nullptr; ///< windows: the child that has the focus while the window is the innermost one
	bool running = false;     ///< windows: in exec()
	bool ended = false;       ///< ... and a result is set
	int result = 0;
	bool isMessageBox = false;
	std::unique_ptr<desk::Behaviour> behaviour;

	static State &of(const eWidget &widget) { return *widget.state; }

	/// Ends a window's run; later calls have no effect.
	void end(int value)
	{
		if (!running || ended)
			return;
		ended = true;
		result = value;
	}

	/// The window of a widget, itself without a parent.
	static eWidget &window(eWidget &widget)
	{
		eWidget *top = &widget;
		while (of(*top).parent)
			top = of(*top).parent;
		return *top;
	}

	/// The widgets of a window that can have the focus, in the order in which it moves.
	static std::vector<eWidget *> stops(const eWidget &window);

	static void place(eWidget &widget, int x, int y, int width, int height);

	static int filter(eWidget &w, const eWidgetEvent &event) { return w.eventFilter(event); }
	static int handle(eWidget &w, const eWidgetEvent &event) { return w.eventHandler(event); }
	static void gotFocus(eWidget &w) { w.gotFocus(); }
	static void lostFocus(eWidget &w) { w.lostFocus(); }
	static void willShow(eWidget &w) { w.willShow(); }
	static void willHide(eWidget &w) { w.willHide(); }
	static void draw(eWidget &w, gPainter &painter, const eRect &area)
	{
		w.eraseBackground(&painter, area);
		w.redrawWidget(&painter, area);
	}
};

namespace desk
{

using State = eWidget::State;

} // namespace desk

#endif

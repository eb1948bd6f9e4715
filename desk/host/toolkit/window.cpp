#include "desk.h"
#include "elistbox.h"
#include "ewindow.h"
#include "list.h"
#include "state.h"
#include "trace.h"

#include <algorithm>

using desk::Desk;
using desk::Key;
using desk::Rect;
using desk::Trace;

namespace
{

// The border: a title bar above the client area, thin borders elsewhere.
constexpr int titleHeight = 30;
constexpr int rim = 4;

constexpr int helpHeight = 34;

/// Draws the current entry's help below a menu's list.
class MenuHelp : public desk::Behaviour
{
public:
	explicit MenuHelp(const eListBoxBase &box) : list(box) {}

	void draw(const eWidget &widget, gPainter &painter) override
	{
		const eRect &client = widget.getClientRect();
		const Rect bar =
			painter.onScreen(eRect(client.left, client.bottom - helpHeight, client.right, client.bottom));
		const desk::Skin &skin = Desk::get().skin();
		painter.canvas.fill(bar, desk::Fill::plain(skin.helpBackground, 0, desk::Part::line));
		if (const eListBoxEntry *entry = eListBoxBase::List::of(list).currentEntry()) {
			desk::TextStyle style;
			style.color = skin.hintText;
			style.face = desk::Face::prose;
			style.rowHeight = Desk::get().fontSize();
			// Aligned to the bar's middle as a whole row, which a character screen can show.
			const int inset = (helpHeight - style.rowHeight) / 2;
			const int indent =
				skin.decoration("eListBox").padding + desk::menuInset; // aligned with the entries' texts
			painter.canvas.text({bar.x + indent, bar.y + inset, bar.w - 2 * indent, style.rowHeight},
			                    entry->getHelpText(), style);
		}
	}

private:
	const eListBoxBase &list;
};

/// Moves the focus to the next or previous widget.
void moveFocus(eWidget &window, int direction)
{
	eWidget::State &state = eWidget::State::of(window);
	const std::vector<eWidget *> stops = eWidget::State::stops(window);
	if (stops.empty())
		return;
	const auto here = std::find(stops.begin(), stops.end(), state.focus);
	const size_t count = stops.size();
	const size_t index = here == stops.end() ? 0 : static_cast<size_t>(here - stops.begin());
	state.focus = stops[(index + (direction > 0 ? 1 : count - 1)) % count];
	Desk::get().windows().updateFocus();
}

} // namespace

eWindow::eWindow(int takefocus) : eWidget(Trace::Quiet().with<eWidget *>(nullptr), takefocus)
{
	State::place(*this, 0, 0, 2 * rim, titleHeight + rim);
	Trace::get().constructed(this, "eWindow", takefocus);
}

eWindow::~eWindow() = default;

void eWindow::willShow() {}
void eWindow::willHide() {}

void eWindow::recalcClientRect()
{
	clientrect = eRect(rim, titleHeight, state->width - rim, state->height - rim);
}

int eWindow::eventHandler(const eWidgetEvent &event)
{
	switch (event.key) {
	case Key::exit:
		Desk::get().leave(*this);
		return 1;
	case Key::left:
	case Key::right:
		moveFocus(*this, event.key == Key::right ? 1 : -1);
		return 1;
	default:
		break;
	}
	if (isColour(event.key))
		for (eWidget *child : state->children) {
			State &below = State::of(*child);
			if (below.visible && below.shortcut == desk::keyName(event.key) && below.behaviour &&
			    below.behaviour->press(*child))
				return 1;
		}
	return eWidget::eventHandler(event);
}

void eWindow::redrawWidget(gPainter *target, const eRect &area)
{
	eWidget::redrawWidget(target, area);
}

void eWindow::eraseBackground(gPainter *target, const eRect &)
{
	const Rect outer{target->x, target->y, state->width, state->height};
	target->canvas.window(outer, target->onScreen(clientrect), state->text, Desk::get().skin().window);
}

eSetupWindow::eSetupWindow(const char *title, int rows, int width)
	: eListBoxWindow<eListBoxEntryMenu>(Trace::Quiet().with(0))
{
	state->text = title ? title : "";
	const int listHeight = desk::bounded(rows) * eListBoxBase::List::of(list).entryHeight;
	State::place(*this, 0, 0, desk::bounded(width) + 2 * rim, titleHeight + listHeight + helpHeight + rim);
	State::place(list, 0, 0, width, listHeight);
	state->behaviour = std::make_unique<MenuHelp>(list);
	state->focus = &list;
	Trace::get().constructed(this, "eSetupWindow", title, rows, width);
}

eSetupWindow::~eSetupWindow() = default;

int eSetupWindow::eventHandler(const eWidgetEvent &event)
{
	// A digit chooses the entry whose help begins with that number.
	if (event.key >= Key::digit1 && event.key <= Key::digit9) {
		eListBoxBase::List::of(list).choose(static_cast<int>(event.key) - static_cast<int>(Key::digit1));
		return 1;
	}
	return eWindow::eventHandler(event);
}

#include "desk.h"
#include "mistakes.h"
#include "state.h"
#include "trace.h"

#include <algorithm>

using desk::bounded;
using desk::Desk;
using desk::Trace;

eWidget::eWidget(eWidget *parent, int takefocus) : state(new State)
{
	state->parent = parent;
	state->takesFocus = takefocus != 0;
	state->visible = parent != nullptr;
	if (parent)
		parent->state->children.push_back(this);
	Trace::get().constructed(this, "eWidget", parent, takefocus);
}

eWidget::~eWidget()
{
	Trace::get().destroyed(this);
	while (!state->children.empty()) {
		Trace::get().disposes(state->children.back());
		delete state->children.back();
	}
	if (state->parent) {
		std::vector<eWidget *> &siblings = state->parent->state->children;
		siblings.erase(std::find(siblings.begin(), siblings.end(), this));
	}
	for (eWidget *above = state->parent; above; above = above->state->parent)
		if (above->state->focus == this)
			above->state->focus = nullptr;
	Desk::get().windows().forget(*this);
	delete state;
}

std::vector<eWidget *> eWidget::State::stops(const eWidget &window)
{
	std::vector<eWidget *> stops;
	for (eWidget *child : of(window).children)
		if (of(*child).takesFocus && of(*child).visible)
			stops.push_back(child);
	return stops;
}

void eWidget::State::place(eWidget &widget, int x, int y, int width, int height)
{
	State &state = of(widget);
	state.x = bounded(x);
	state.y = bounded(y);
	state.width = bounded(width);
	state.height = bounded(height);
	widget.recalcClientRect();
}

void eWidget::willShow() {}
void eWidget::willHide() {}
void eWidget::setPalette() {}

int eWidget::eventFilter(const eWidgetEvent &)
{
	return 0;
}

int eWidget::keyDown(int)
{
	return 0;
}

int eWidget::keyUp(int)
{
	return 0;
}

void eWidget::gotFocus() {}
void eWidget::lostFocus() {}

void eWidget::recalcClientRect()
{
	clientrect = eRect(0, 0, state->width, state->height);
}

int eWidget::eventHandler(const eWidgetEvent &event)
{
	if (event.key == desk::Key::ok && state->behaviour && state->behaviour->press(*this))
		return 1;
	// Presses have no duration here: each key goes up right after it went down.
	const int key = static_cast<int>(event.key);
	const int down = keyDown(key);
	const int up = keyUp(key);
	return down || up;
}

void eWidget::redrawWidget(gPainter *target, const eRect &)
{
	if (state->behaviour)
		state->behaviour->draw(*this, *target);
}

void eWidget::eraseBackground(gPainter *, const eRect &) {}

int eWidget::setProperty(const eString &, const eString &)
{
	return -1;
}

void eWidget::setText(const eString &text)
{
	Trace::get().call(this, "setText", text);
	state->text = text;
}

void eWidget::cmove(const ePoint &position)
{
	Trace::get().call(this, "cmove", position.x, position.y);
	State::place(*this, bounded(position.x) - clientrect.left, bounded(position.y) - clientrect.top,
	             state->width, state->height);
}

void eWidget::cresize(const eSize &size)
{
	Trace::get().call(this, "cresize", size.width, size.height);
	const int borderWidth = state->width - clientrect.width();
	const int borderHeight = state->height - clientrect.height();
	State::place(*this, state->x, state->y, bounded(size.width) + borderWidth,
	             bounded(size.height) + borderHeight);
}

void eWidget::move(const ePoint &position)
{
	Trace::get().call(this, "move", position.x, position.y);
	State::place(*this, position.x, position.y, state->width, state->height);
}

void eWidget::resize(const eSize &size)
{
	Trace::get().call(this, "resize", size.width, size.height);
	State::place(*this, state->x, state->y, size.width, size.height);
}

void eWidget::show()
{
	Trace::get().call(this, "show");
	if (state->visible)
		return;
	willShow();
	state->visible = true;
	if (!state->parent)
		Desk::get().windows().show(*this);
	Desk::get().windows().updateFocus();
}

void eWidget::hide()
{
	Trace::get().call(this, "hide");
	if (!state->visible)
		return;
	willHide();
	state->visible = false;
	if (!state->parent)
		Desk::get().windows().hide(*this);
	Desk::get().windows().updateFocus();
}

int eWidget::exec()
{
	Trace::get().call(this, "exec");
	if (!state->visible)
		Desk::get().reportMistake(*this, "exec() without show(): nobody sees it; call show() before: \"" +
		                                     state->text + '"');
	state->running = true;
	state->ended = false;
	state->result = 0;
	if (!Desk::get().run(*this))
		return -1; // a slot destroyed the window
	state->running = false;
	Trace::get().returned(this, "exec", state->result);
	return state->result;
}

void eWidget::accept()
{
	Trace::get().call(this, "accept");
	state->end(0);
}

void eWidget::reject()
{
	Trace::get().call(this, "reject");
	state->end(-1);
}

void eWidget::setFocus(eWidget *child)
{
	Trace::get().call(this, "setFocus", child);
	if (child && &State::window(*child) != &State::window(*this))
		return;
	state->focus = child;
	Desk::get().windows().updateFocus();
}

void eWidget::setShortcut(const eString &key)
{
	Trace::get().call(this, "setShortcut", key);
	state->shortcut = key;
	desk::checkColour(*this, "setShortcut", key);
}

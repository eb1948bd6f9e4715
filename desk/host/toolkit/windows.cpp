#include "windows.h"

#include "state.h"

#include <algorithm>

namespace desk
{

namespace
{

void take(std::vector<eWidget *> &widgets, const eWidget &widget)
{
	widgets.erase(std::remove(widgets.begin(), widgets.end(), &widget), widgets.end());
}

eWidget *firstThatTakesFocus(const State &window)
{
	for (eWidget *child : window.children)
		if (State::of(*child).takesFocus && State::of(*child).visible)
			return child;
	return nullptr;
}

} // namespace

void Windows::show(eWidget &window)
{
	shown.push_back(&window);
}

void Windows::hide(eWidget &window)
{
	take(shown, window);
}

void Windows::start(eWidget &window)
{
	running.push_back(&window);
	updateFocus();
}

void Windows::stop(eWidget &window)
{
	take(running, window);
	updateFocus();
}

bool Windows::runs(const eWidget &window) const
{
	return std::find(running.begin(), running.end(), &window) != running.end();
}

void Windows::forget(eWidget &widget)
{
	take(shown, widget);
	take(running, widget);
	if (focused == &widget)
		focused = nullptr; // without calling lostFocus(), during destruction
	updateFocus();
}

void Windows::forgetAll()
{
	shown.clear();
	running.clear();
	focused = nullptr;
}

void Windows::updateFocus()
{
	eWidget *next = nullptr;
	if (!running.empty()) {
		eWidget *window = running.back();
		State &state = State::of(*window);
		if (!state.focus || !State::of(*state.focus).visible)
			state.focus = firstThatTakesFocus(state);
		next = state.focus ? state.focus : window;
	}
	if (next == focused)
		return;
	eWidget *before = focused;
	focused = next;
	if (before)
		State::lostFocus(*before);
	if (next)
		State::gotFocus(*next);
}

void Windows::dispatch(Key key)
{
	const eWidgetEvent event{key};
	eWidget &window = *running.back();
	eWidget &first = focused ? *focused : window;
	if (State::filter(first, event) || State::handle(first, event))
		return;
	if (&first != &window && runs(window) && !State::filter(window, event))
		State::handle(window, event);
}

} // namespace desk

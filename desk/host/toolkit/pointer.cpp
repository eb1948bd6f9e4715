#include "list.h"
#include "state.h"
#include "windows.h"

#include <algorithm>

namespace desk
{
namespace
{

using List = eListBoxBase::List;
using Keys = std::vector<Key>;

void press(Keys &keys, Key key, int times)
{
	keys.insert(keys.end(), static_cast<size_t>(std::max(0, times)), key);
}

/// The fewest keys that move the focus to the widget.
Keys keysToFocus(eWidget &window, const eWidget &widget)
{
	const std::vector<eWidget *> stops = State::stops(window);
	const auto place = [&](const eWidget *stop) {
		return static_cast<int>(std::find(stops.begin(), stops.end(), stop) - stops.begin());
	};
	const int count = static_cast<int>(stops.size());
	const int here = place(State::of(window).focus) % std::max(1, count);
	const int right = (place(&widget) - here + count) % std::max(1, count);
	Keys keys;
	if (right <= count - right)
		press(keys, Key::right, right);
	else
		press(keys, Key::left, count - right);
	return keys;
}

/// `x`, `y`: position in the list.
void chooseInList(Keys &keys, const List &list, int x, int y)
{
	if (list.scrolls() && x >= State::of(list.box).width - barWidth) {
		const int64_t line = int64_t{y} * list.count() / std::max(1, State::of(list.box).height);
		if (line < list.top)
			keys.push_back(Key::pageup);
		else if (line >= list.top + list.rows())
			keys.push_back(Key::pagedown);
		return;
	}
	const int row = y / list.entryHeight;
	if (row >= list.shown())
		return;
	const int way = list.top + row - list.current;
	press(keys, Key::up, -way);
	press(keys, Key::down, way);
	keys.push_back(Key::ok);
}

} // namespace

std::vector<Key> Windows::keysAt(int x, int y) const
{
	if (running.empty())
		return {};
	eWidget &window = *running.back();
	const State &state = State::of(window);
	x -= state.x + window.getClientRect().left;
	y -= state.y + window.getClientRect().top;
	for (auto child = state.children.rbegin(); child != state.children.rend(); ++child) {
		const State &below = State::of(**child);
		const bool inside =
			x >= below.x && x < below.x + below.width && y >= below.y && y < below.y + below.height;
		if (!below.visible || !inside)
			continue;
		if (dynamic_cast<const eButton *>(*child)) {
			if (const std::optional<Key> shortcut = colourNamed(below.shortcut))
				return {*shortcut};
			if (!below.takesFocus)
				return {};
			Keys keys = keysToFocus(window, **child);
			keys.push_back(Key::ok);
			return keys;
		}
		if (const auto *list = dynamic_cast<const eListBoxBase *>(*child)) {
			if (!below.takesFocus)
				return {};
			Keys keys = keysToFocus(window, **child);
			chooseInList(keys, List::of(*list), x - below.x, y - below.y);
			return keys;
		}
	}
	return {};
}

} // namespace desk

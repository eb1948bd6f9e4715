#include "display_list.h"

#include <algorithm>
#include <iterator>

namespace desk
{

namespace
{

/// The area that an item affects, without the clip.
struct Reach
{
	Rect operator()(const DisplayList::FillItem &i) const { return i.area; }
	Rect operator()(const DisplayList::WindowItem &i) const
	{
		return {i.outer.x - shadowReach, i.outer.y - shadowReach, i.outer.w + 2 * shadowReach,
		        i.outer.h + 2 * shadowReach};
	}
	Rect operator()(const DisplayList::TextItem &i) const { return i.area; }
	Rect operator()(const DisplayList::KeyItem &i) const { return i.area; }
};

template <class Iterator> Rect reachOf(Iterator begin, Iterator end)
{
	Rect all;
	for (; begin != end; ++begin)
		all = all.united(begin->reach());
	return all;
}

Rect movedDown(Rect area, int down)
{
	area.y += down;
	return area;
}

bool isMoved(const DisplayList::Item &now, const DisplayList::Item &before, int down)
{
	const auto *text = std::get_if<DisplayList::TextItem>(&now.what);
	const auto *was = std::get_if<DisplayList::TextItem>(&before.what);
	return text && was && text->area == movedDown(was->area, down) &&
	       now.reach() == movedDown(before.reach(), down) && text->style == was->style &&
	       text->line == was->line;
}

/// Whether an item paints all of `area` in one colour.
bool isFlat(const DisplayList::Item &item, const Rect &area)
{
	Rect flat;
	if (const auto *fill = std::get_if<DisplayList::FillItem>(&item.what))
		flat = fill->fill.top == fill->fill.bottom && fill->fill.radius == 0 ? fill->area : Rect();
	else if (const auto *window = std::get_if<DisplayList::WindowItem>(&item.what))
		flat = flatPart(window->outer, window->client, window->style);
	return area.intersected(flat).intersected(item.clip) == area;
}

} // namespace

Rect DisplayList::Item::reach() const
{
	return std::visit(Reach(), what).intersected(clip);
}

template <class What> void DisplayList::add(What what)
{
	if (Reach()(what).intersected(clips.back()).empty())
		return;
	if (items.empty())
		items.reserve(32); // few pictures have fewer
	// Built in place, because GCC 14 warns of an uninitialised part when an item is moved.
	Item &item = items.emplace_back();
	item.clip = clips.back();
	item.what = std::move(what);
}

void DisplayList::pushClip(const Rect &area)
{
	clips.push_back(clips.back().intersected(area));
}

void DisplayList::popClip()
{
	clips.pop_back();
}

void DisplayList::fill(const Rect &area, const Fill &fill)
{
	add(FillItem{area, fill});
}

void DisplayList::window(const Rect &outer, const Rect &client, std::string_view title,
                         const WindowStyle &style)
{
	add(WindowItem{outer, client, std::string(title.substr(0, mostBytesWithin(outer.w))), style});
}

void DisplayList::text(const Rect &area, std::string_view line, const TextStyle &style)
{
	add(TextItem{area, std::string(line.substr(0, mostBytesWithin(area.w))), style});
}

void DisplayList::keySymbol(const Rect &area, Key key, Color color)
{
	add(KeyItem{area, key, color});
}

DisplayList::Edit DisplayList::editOf(const DisplayList &before) const
{
	// Only the items between the common start and end differ.
	const auto [start, startBefore] =
		std::mismatch(items.begin(), items.end(), before.items.begin(), before.items.end());
	const auto [end, endBefore] =
		std::mismatch(items.rbegin(), std::make_reverse_iterator(start), before.items.rbegin(),
	                  std::make_reverse_iterator(startBefore));
	Edit edit;
	edit.front = static_cast<size_t>(start - items.begin());
	edit.back = static_cast<size_t>(end - items.rbegin());
	edit.items.assign(start, end.base());
	return edit;
}

std::optional<Rect> DisplayList::apply(Edit edit)
{
	if (edit.front > items.size() || edit.back > items.size() - edit.front)
		return std::nullopt;
	const auto from = items.begin() + static_cast<std::ptrdiff_t>(edit.front);
	const auto to = items.end() - static_cast<std::ptrdiff_t>(edit.back);
	std::vector<Item> &made = edit.items;
	changed = reachOf(from, to).united(reachOf(made.begin(), made.end())).intersected(wholeScreen);
	moved = moveTo(made, from, to);
	made.insert(made.begin(), items.begin(), from);
	made.insert(made.end(), to, items.end());
	items = std::move(made);
	return changed;
}

/// The lines that a scrolling list only moves when `made` replaces the items between `from` and `to`.
DisplayList::Move DisplayList::moveTo(const std::vector<Item> &made, Iterator from, Iterator to) const
{
	// The first moved line and those after it; only a few new lines precede it.
	constexpr size_t mostNew = 8;
	int down = 0;
	const auto hasMoved = [&down](const Item &now, const Item &before) { return isMoved(now, before, down); };
	const auto wasElsewhere = [&](const Item &now) {
		return std::find_if(from, to, [&](const Item &before) {
			down = now.reach().y - before.reach().y;
			return down != 0 && hasMoved(now, before);
		});
	};
	const Iterator last = made.begin() + static_cast<std::ptrdiff_t>(std::min(mostNew, made.size()));
	Iterator now = made.begin(), before = to;
	while (now != last && (before = wasElsewhere(*now)) == to)
		++now;
	const auto [end, endBefore] = std::mismatch(now, made.end(), before, to, hasMoved);
	const Rect area = reachOf(now, end), source = movedDown(area, -down), both = area.united(source);

	// Moving pixels needs a background of one colour and no other item in both areas.
	const auto reaches = [](const Rect &where) {
		return [&where](const Item &item) { return !item.reach().intersected(where).empty(); };
	};
	const auto below = std::find_if(std::make_reverse_iterator(from), items.rend(), reaches(both));
	const bool isAlone =
		std::none_of(made.begin(), now, reaches(area)) && std::none_of(end, made.end(), reaches(area)) &&
		std::none_of(from, before, reaches(source)) && std::none_of(endBefore, to, reaches(source)) &&
		std::none_of(to, items.end(), reaches(both));
	const bool stays = below != items.rend() && isFlat(*below, both) && both.intersected(wholeScreen) == both;
	return isAlone && stays ? Move{area, down} : Move();
}

Rect DisplayList::reach() const
{
	return reachOf(items.begin(), items.end());
}

void DisplayList::drawChanges(Canvas &to) const
{
	if (moved.area.empty() || !to.move(moved.area, moved.down))
		return draw(to, to.paintsInParts() ? changed : wholeScreen);
	for (const Rect &part : changed.around(moved.area))
		draw(to, part);
}

void DisplayList::draw(Canvas &to, const Rect &area) const
{
	if (area.empty())
		return;
	struct Drawing
	{
		Canvas &to;

		void operator()(const FillItem &i) { to.fill(i.area, i.fill); }
		void operator()(const WindowItem &i) { to.window(i.outer, i.client, i.title, i.style); }
		void operator()(const TextItem &i) { to.text(i.area, i.line, i.style); }
		void operator()(const KeyItem &i) { to.keySymbol(i.area, i.key, i.color); }
	} drawing{to};

	// An item that fills the area with one colour hides all items below it.
	const auto isGround = [&area](const Item &item) { return isFlat(item, area); };
	const auto ground = std::find_if(items.rbegin(), items.rend(), isGround);
	to.pushClip(area);
	for (auto item = ground == items.rend() ? items.begin() : ground.base() - 1; item != items.end();
	     ++item) {
		if (item->reach().intersected(area).empty())
			continue;
		const bool isCut = area.intersected(item->clip) != area;
		if (isCut)
			to.pushClip(item->clip);
		std::visit(drawing, item->what);
		if (isCut)
			to.popClip();
	}
	to.popClip();
}

} // namespace desk

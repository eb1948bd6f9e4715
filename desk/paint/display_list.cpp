#include "display_list.h"

#include <algorithm>

namespace desk
{

template <class What> void DisplayList::add(const Rect &reach, What what)
{
	const Rect seen = reach.intersected(clips.back());
	if (seen.empty())
		return;
	// In its place: GCC 14 takes an item that is moved there for partly uninitialised.
	Item &item = items.emplace_back();
	item.clip = clips.back();
	item.reach = seen;
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
	add(area, FillItem{area, fill});
}

void DisplayList::frame(const Rect &outer, const Rect &client, std::string_view title,
                        const FrameStyle &style)
{
	const Rect withShadow = {outer.x - shadowReach, outer.y - shadowReach, outer.w + 2 * shadowReach,
	                         outer.h + 2 * shadowReach};
	add(withShadow, FrameItem{outer, client, std::string(title.substr(0, mostBytesWithin(outer.w))), style});
}

void DisplayList::text(const Rect &area, std::string_view line, const TextStyle &style)
{
	add(area, TextItem{area, std::string(line.substr(0, mostBytesWithin(area.w))), style});
}

void DisplayList::keySymbol(const Rect &area, ColourKey key, Color color)
{
	add(area, KeyItem{area, key, color});
}

Rect DisplayList::changesFrom(const DisplayList &before) const
{
	// What is the same at both ends of the lists looks the same.
	const auto [start, startBefore] =
		std::mismatch(items.begin(), items.end(), before.items.begin(), before.items.end());
	const auto [end, endBefore] =
		std::mismatch(items.rbegin(), std::make_reverse_iterator(start), before.items.rbegin(),
	                  std::make_reverse_iterator(startBefore));
	Rect changes;
	for (auto item = start; item != end.base(); ++item)
		changes = changes.united(item->reach);
	for (auto item = startBefore; item != endBefore.base(); ++item)
		changes = changes.united(item->reach);
	return changes;
}

void DisplayList::draw(Canvas &to, const Rect &area) const
{
	struct Drawing
	{
		Canvas &to;

		void operator()(const FillItem &i) { to.fill(i.area, i.fill); }
		void operator()(const FrameItem &i) { to.frame(i.outer, i.client, i.title, i.style); }
		void operator()(const TextItem &i) { to.text(i.area, i.line, i.style); }
		void operator()(const KeyItem &i) { to.keySymbol(i.area, i.key, i.color); }
	} drawing{to};

	to.pushClip(area);
	for (const Item &item : items) {
		if (item.reach.intersected(area).empty())
			continue;
		to.pushClip(item.clip);
		std::visit(drawing, item.what);
		to.popClip();
	}
	to.popClip();
}

} // namespace desk

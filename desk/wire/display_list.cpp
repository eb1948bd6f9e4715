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
	Rect operator()(const DisplayList::FrameItem &i) const
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

} // namespace

Rect DisplayList::Item::reach() const
{
	return std::visit(Reach(), what).intersected(clip);
}

template <class What> void DisplayList::add(What what)
{
	if (Reach()(what).intersected(clips.back()).empty())
		return;
	// In its place: GCC 14 takes an item that is moved there for partly uninitialised.
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

void DisplayList::frame(const Rect &outer, const Rect &client, std::string_view title,
                        const FrameStyle &style)
{
	add(FrameItem{outer, client, std::string(title.substr(0, mostBytesWithin(outer.w))), style});
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
	const Rect changes =
		reachOf(from, to).united(reachOf(edit.items.begin(), edit.items.end())).intersected(wholeScreen);
	std::vector<Item> &made = edit.items;
	made.insert(made.begin(), items.begin(), from);
	made.insert(made.end(), to, items.end());
	items = std::move(made);
	return changes;
}

Rect DisplayList::reach() const
{
	return reachOf(items.begin(), items.end());
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
		if (item.reach().intersected(area).empty())
			continue;
		to.pushClip(item.clip);
		std::visit(drawing, item.what);
		to.popClip();
	}
	to.popClip();
}

} // namespace desk

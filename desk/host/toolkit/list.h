#ifndef DESK_TOOLKIT_LIST_H
#define DESK_TOOLKIT_LIST_H

#include "elistbox.h"

#include <deque>
#include <memory>

namespace desk
{

/// How much further in than the lines of other lists those of a menu begin, in pixels.
constexpr int menuInset = 10;

/// Of the scroll bar at a list's right edge, in pixels.
constexpr int barWidth = 8;

} // namespace desk

/// What the host keeps of a list box.
///
/// Nothing that a key press does depends on the number of entries.
struct eListBoxBase::List
{
	explicit List(eListBoxBase &of) : box(of) {}

	static List &of(const eListBoxBase &box)
	{
		box.list->keepInRange();
		return *box.list;
	}

	const eListBoxEntry *currentEntry() const
	{
		return entries.empty() ? nullptr : entries[static_cast<size_t>(current)];
	}

	int count() const { return static_cast<int>(entries.size()); }

	/// Whole rows that the box shows.
	int rows() const;

	bool scrolls() const { return count() > rows(); }

	/// Entries on the screen: from `top` on, `shown()` of them.
	int shown() const;

	/// Moves the selection, scrolls as needed and reports it.
	void moveTo(int index);

	/// Moves to the entry, if there is one of that index, and confirms it.
	void choose(int index);

	void confirm();
	void leave();

	/// Emits the list's signals.
	void tellMove(eListBoxEntry *to);
	void tellChoice(eListBoxEntry *of);

	/// Deletes all entries with their keys, without being called back by them.
	void dispose();

	/// Keeps `current` and `top` within the entries. Due before anything is shown or done, and not before: the list
	/// keeps its place on the screen while entries go and come back.
	void keepInRange();

	eListBoxBase &box;
	std::deque<eListBoxEntry *> entries; ///< in blocks: a list that grows is never copied
	int current = 0;
	int top = 0;
	int entryHeight = 1;
	bool isGoing = false; ///< it is being destroyed, and reports nothing any more
	/// What choose() is to confirm, null when it has been taken out; lives as long as the list.
	const std::shared_ptr<eListBoxEntry *> chosen = std::make_shared<eListBoxEntry *>(nullptr);
};

#endif

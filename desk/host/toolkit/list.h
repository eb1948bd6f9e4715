#ifndef DESK_TOOLKIT_LIST_H
#define DESK_TOOLKIT_LIST_H

#include "elistbox.h"

#include <deque>
#include <memory>

namespace desk
{

/// Additional indentation of menu lines, in pixels.
constexpr int menuInset = 10;

/// Width of the scroll bar, in pixels.
constexpr int barWidth = 8;

} // namespace desk

/// The host's data of a list box.
///
/// The cost of a key press does not depend on the number of entries.
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

	/// Number of whole rows.
	int rows() const;

	bool scrolls() const { return count() > rows(); }

	/// Number of visible entries, from `top`.
	int shown() const;

	/// Moves the selection, scrolls as needed, and reports the move.
	void moveTo(int index);

	/// Moves to the entry `index`, if it exists, and confirms it.
	void choose(int index);

	void confirm();
	void leave();

	/// Emit the list's signals.
	void tellMove(eListBoxEntry *to);
	void tellChoice(eListBoxEntry *of);

	/// Deletes all entries and their keys; entries do not call back.
	void dispose();

	/// Moves `current` and `top` to existing entries. To be called before drawing and handling keys, but not earlier:
	/// the list keeps its scroll position while entries are removed and added.
	void keepInRange();

	eListBoxBase &box;
	std::deque<eListBoxEntry *> entries; ///< a deque does not copy entries when it grows
	int current = 0;
	int top = 0;
	int entryHeight = 1;
	bool isGoing = false; ///< during destruction the list reports nothing
	/// The entry that choose() will confirm, null after its removal. weak_ptrs to it tell whether the list still
	/// exists.
	const std::shared_ptr<eListBoxEntry *> chosen = std::make_shared<eListBoxEntry *>(nullptr);
};

#endif

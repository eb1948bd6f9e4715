// An entry while it is inserted and removed. This program implements the list and no other part of the toolkit.

#include "toolkit.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

std::vector<std::string> seen;

struct Entry : eListBoxEntry
{
	using eListBoxEntry::eListBoxEntry;
	void redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int) override {}
};

TEST(Entry, is_complete_when_it_is_appended_and_still_is_when_it_is_removed)
{
	// Raw memory stands for the list: its two operations below do not touch it.
	alignas(eListBoxBase) char place[sizeof(eListBoxBase)] = {};
	eListBoxBase *const list = reinterpret_cast<eListBoxBase *>(place);
	seen.clear();
	// Too long for a string's internal buffer.
	const std::string help(100, 'h');
	{
		const Entry explained(list, help, 7);
		const Entry plain(list, "");
	}
	EXPECT_EQ(seen, (std::vector<std::string>{"append, false, false: 7 " + help, "append, false, false: 0  ",
	                                          "remove, false: 0  ", "remove, false: 7 " + help}));
}

} // namespace

void eListBoxBase::append(eListBoxEntry *entry, bool makeCurrent, bool atTop)
{
	EXPECT_EQ(entry->listbox, this);
	seen.push_back(std::string("append, ") + (makeCurrent ? "true, " : "false, ") +
	               (atTop ? "true: " : "false: ") + std::to_string(entry->attr) + ' ' + entry->helptext);
}

void eListBoxBase::remove(eListBoxEntry *entry, bool fromDestruction)
{
	EXPECT_EQ(entry->listbox, this);
	seen.push_back(std::string("remove, ") + (fromDestruction ? "true: " : "false: ") +
	               std::to_string(entry->attr) + ' ' + entry->helptext);
}

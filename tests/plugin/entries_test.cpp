// An entry as its list sees it while it is put in and taken out: this program is that list, and nothing else of a toolkit.

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
	// No list is there: its two operations below touch none.
	alignas(eListBoxBase) char place[sizeof(eListBoxBase)] = {};
	eListBoxBase *const list = reinterpret_cast<eListBoxBase *>(place);
	seen.clear();
	// Longer than a string keeps within itself.
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

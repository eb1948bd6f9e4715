// An entry as its list sees it while it is put in: this program is that list, and nothing else of a toolkit.

#include "toolkit.h"

#include <gtest/gtest.h>

namespace
{

int attributeSeen;

struct Entry : eListBoxEntry
{
	using eListBoxEntry::eListBoxEntry;
	void redraw(gPainter *, const eRect &, gColor, gColor, gColor, gColor, int) override {}
};

TEST(Entry, has_its_attribute_when_it_is_appended)
{
	// No list is there: its two operations below touch none.
	alignas(eListBoxBase) char place[sizeof(eListBoxBase)] = {};
	attributeSeen = 0;
	const Entry entry(reinterpret_cast<eListBoxBase *>(place), "help", 7);
	EXPECT_EQ(attributeSeen, 7);
}

} // namespace

void eListBoxBase::append(eListBoxEntry *entry, bool, bool)
{
	attributeSeen = entry->attr;
}

void eListBoxBase::remove(eListBoxEntry *, bool) {}

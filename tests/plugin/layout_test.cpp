// What lies where in the plugin's windows and in the entries that its inline code makes.

#include "meminfo.h"
#include "ps.h"
#include "scanlog.h"
#include "sysinf.h"
#include "vexlomenu.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace
{

/// Names a private member: an explicit instantiation may.
template <class Member, Member member> struct Private
{
	friend std::ptrdiff_t offset(Member)
	{
		// A pointer to a data member is its offset.
		std::ptrdiff_t result = 0;
		Member pointer = member;
		static_assert(sizeof result == sizeof pointer, "not the usual C++ ABI");
		std::memcpy(&result, &pointer, sizeof result);
		return result;
	}
};

using ProcessList = eListBox<eListBoxEntryText> *ePsDialog::*;
using DeleteButton = eButton *eScanLogDialog::*;
using LogList = eListBox<eListBoxEntryText> *eScanLogDialog::*;
using OkButton = eButton *eSysInfDialog::*;
std::ptrdiff_t offset(ProcessList);
std::ptrdiff_t offset(DeleteButton);
std::ptrdiff_t offset(LogList);
std::ptrdiff_t offset(OkButton);
template struct Private<ProcessList, &ePsDialog::processList>;
template struct Private<DeleteButton, &eScanLogDialog::deleteButton>;
template struct Private<LogList, &eScanLogDialog::logList>;
template struct Private<OkButton, &eSysInfDialog::okButton>;

TEST(Layout, menu_and_memory_dialog_hold_nothing_of_their_own)
{
	EXPECT_EQ(sizeof(eVexloMenu), sizeof(eSetupWindow));
	EXPECT_EQ(sizeof(eMemInfoDialog), sizeof(eWindow));
}

TEST(Layout, the_other_dialogs_hold_their_pointers_and_nothing_else)
{
	EXPECT_EQ(sizeof(ePsDialog), sizeof(eWindow) + sizeof(void *));
	EXPECT_EQ(sizeof(eSysInfDialog), sizeof(eWindow) + sizeof(void *));
	EXPECT_EQ(sizeof(eScanLogDialog), sizeof(eWindow) + 2 * sizeof(void *));
	EXPECT_EQ(offset(ProcessList()), offset(OkButton())) << "right behind the window's";
	EXPECT_EQ(offset(DeleteButton()), offset(OkButton()));
	EXPECT_EQ(offset(LogList()), offset(DeleteButton()) + static_cast<std::ptrdiff_t>(sizeof(void *)))
		<< "the button before the list";
}

/// The entries' fields, which are for those who derive.
struct Entry : eListBoxEntryMenu
{
	template <class Class, class T> static std::ptrdiff_t at(T Class::*member)
	{
		std::ptrdiff_t result = 0;
		std::memcpy(&result, &member, sizeof result);
		return result;
	}
	static std::vector<std::ptrdiff_t> fields()
	{
		return {at(&Entry::listbox), at(&Entry::helptext), at(&Entry::attr),
		        at(&Entry::text),    at(&Entry::key),      at(&Entry::keytype),
		        at(&Entry::align),   at(&Entry::precolor), at(&Entry::selected)};
	}
};

TEST(Layout, entries_keep_their_fields_in_order)
{
	const std::vector<std::ptrdiff_t> fields = Entry::fields();
	EXPECT_EQ(fields.front(), static_cast<std::ptrdiff_t>(sizeof(void *))) << "after the operations' table";
	for (size_t i = 1; i < fields.size(); ++i)
		EXPECT_LT(fields[i - 1], fields[i]) << "field " << i;
}

TEST(Layout, a_list_boxs_two_signals_are_in_order)
{
	using List = eListBox<eListBoxEntryText>;
	EXPECT_LT(Entry::at(&List::selected), Entry::at(&List::selchanged));
}

} // namespace

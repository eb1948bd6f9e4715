// Offsets in the plugin's windows and in the entries that its inline code makes.

#include "meminfo.h"
#include "ps.h"
#include "scanlog.h"
#include "sysinf.h"
#include "vexlomenu.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <vector>

namespace
{

/// Names a private member, as an explicit instantiation may.
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

/// The offset with 64-bit and with 32-bit pointers.
std::ptrdiff_t at(std::ptrdiff_t with64, std::ptrdiff_t with32)
{
	return sizeof(void *) == 8 ? with64 : with32;
}

TEST(Layout, the_other_dialogs_hold_their_pointers_and_nothing_else)
{
	EXPECT_EQ(sizeof(ePsDialog), sizeof(eWindow) + sizeof(void *));
	EXPECT_EQ(sizeof(eSysInfDialog), sizeof(eWindow) + sizeof(void *));
	EXPECT_EQ(sizeof(eScanLogDialog), sizeof(eWindow) + 2 * sizeof(void *));
	EXPECT_EQ(offset(ProcessList()), at(32, 24)) << "right behind the window's";
	EXPECT_EQ(offset(OkButton()), at(32, 24));
	EXPECT_EQ(offset(DeleteButton()), at(32, 24));
	EXPECT_EQ(offset(LogList()), at(40, 28)) << "the button before the list";
}

TEST(Layout, a_rectangle_is_left_top_right_and_bottom)
{
	const eRect rect(1, 2, 3, 4);
	int sides[4];
	ASSERT_EQ(sizeof rect, sizeof sides);
	std::memcpy(sides, &rect, sizeof sides);
	for (int side = 0; side < 4; ++side)
		EXPECT_EQ(sides[side], side + 1);
	EXPECT_EQ(eRect(10, 20, 13, 24).width(), 3);
	EXPECT_EQ(eRect(10, 20, 13, 24).height(), 4);
}

/// Makes protected fields accessible.
template <class Class> struct Fields : Class
{
	template <class T, class Owner> static std::ptrdiff_t at(T Owner::*member)
	{
		std::ptrdiff_t result = 0;
		std::memcpy(&result, &member, sizeof result);
		return result;
	}

	static std::ptrdiff_t clientRect() { return at(&Fields::clientrect); }
	static void expectTypesOfAnEntrysFields()
	{
		EXPECT_TRUE((std::is_same_v<decltype(Fields::listbox), eListBoxBase *>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::helptext), eString>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::attr), int>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::text), eString>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::key), void *>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::keytype), int>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::align), int>));
		EXPECT_TRUE((std::is_same_v<decltype(Fields::precolor), int>));
	}
	static std::vector<std::ptrdiff_t> ofAnEntry()
	{
		return {at(&Fields::listbox), at(&Fields::helptext), at(&Fields::attr),
		        at(&Fields::text),    at(&Fields::key),      at(&Fields::keytype),
		        at(&Fields::align),   at(&Fields::precolor), at(&Fields::selected)};
	}
};

TEST(Layout, the_client_rectangle_is_a_widgets_first_field)
{
	EXPECT_EQ(Fields<eWindow>::clientRect(), at(8, 4)) << "after the operations' table";
}

TEST(Layout, entries_keep_their_fields_in_order)
{
	Fields<eListBoxEntryMenu>::expectTypesOfAnEntrysFields();
	ASSERT_EQ(sizeof(eString), static_cast<size_t>(at(32, 24)));
	EXPECT_EQ(Fields<eListBoxEntryMenu>::ofAnEntry(),
	          (std::vector<std::ptrdiff_t>{at(8, 4), at(16, 8), at(48, 32), at(56, 36), at(88, 60),
	                                       at(96, 64), at(100, 68), at(104, 72), at(112, 76)}));
	EXPECT_EQ(eListBoxEntryText::keyAddress, 0);
	EXPECT_EQ(eListBoxEntryText::keyIgnored, 1);
}

TEST(Layout, a_list_boxs_two_signals_are_in_order)
{
	using List = eListBox<eListBoxEntryText>;
	EXPECT_LT(Fields<eWidget>::at(&List::selected), Fields<eWidget>::at(&List::selchanged));
}

TEST(Layout, answers_have_their_values)
{
	EXPECT_EQ(eMessageBox::yes, 4);
	EXPECT_EQ(eMessageBox::no, 8);
}

} // namespace

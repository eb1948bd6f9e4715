// Types that the plugin's sources require of a toolkit, ours or a vendor's. No symbol's name contains these types, so
// loading the plugin would not find a mismatch.

#include "toolkit.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace
{

template <class Wanted, class Given> void expectType()
{
	EXPECT_TRUE((std::is_same_v<Wanted, Given>)) << __PRETTY_FUNCTION__;
}

template <class Object, class... Arguments> using Returns = void (Object::*)(Arguments...);
template <class Object, class... Arguments> using ReturnsInt = int (Object::*)(Arguments...);

/// Derived classes can name protected operations.
struct Widget : eWidget
{
	static void expectTypes()
	{
		expectType<Returns<eWidget>, decltype(&Widget::willShow)>();
		expectType<Returns<eWidget>, decltype(&Widget::willHide)>();
		expectType<Returns<eWidget>, decltype(&Widget::setPalette)>();
		expectType<ReturnsInt<eWidget, const eWidgetEvent &>, decltype(&Widget::eventFilter)>();
		expectType<ReturnsInt<eWidget, int>, decltype(&Widget::keyDown)>();
		expectType<ReturnsInt<eWidget, int>, decltype(&Widget::keyUp)>();
		expectType<Returns<eWidget>, decltype(&Widget::gotFocus)>();
		expectType<Returns<eWidget>, decltype(&Widget::lostFocus)>();
		expectType<Returns<eWidget>, decltype(&Widget::recalcClientRect)>();
		expectType<ReturnsInt<eWidget, const eWidgetEvent &>, decltype(&Widget::eventHandler)>();
		expectType<Returns<eWidget, gPainter *, const eRect &>, decltype(&Widget::redrawWidget)>();
		expectType<Returns<eWidget, gPainter *, const eRect &>, decltype(&Widget::eraseBackground)>();
		expectType<ReturnsInt<eWidget, const eString &, const eString &>, decltype(&Widget::setProperty)>();
	}
};

struct List : eListBox<eListBoxEntryText>
{
	static void expectTypes()
	{
		expectType<Returns<eListBox<eListBoxEntryText>, eListBoxEntry *>, decltype(&List::SendSelected)>();
		expectType<Returns<eListBox<eListBoxEntryText>, eListBoxEntry *>, decltype(&List::SendSelChanged)>();
	}
};

TEST(Signatures, of_virtual_operations)
{
	Widget::expectTypes();
	List::expectTypes();
	expectType<bool (eListBoxEntry::*)(const eListBoxEntry &) const, decltype(&eListBoxEntry::operator<)>();
	expectType<bool (eListBoxEntryText::*)(const eListBoxEntry &) const,
	           decltype(&eListBoxEntryText::operator<)>();
	expectType<Returns<eListBoxEntry, gPainter *, const eRect &, gColor, gColor, gColor, gColor, int>,
	           decltype(&eListBoxEntry::redraw)>();
	expectType<Returns<eListBoxEntryText, gPainter *, const eRect &, gColor, gColor, gColor, gColor, int>,
	           decltype(&eListBoxEntryText::redraw)>();
	expectType<void (SigC::ObjectBase::*)() const, decltype(&SigC::ObjectBase::reference)>();
	expectType<void (SigC::ObjectBase::*)() const, decltype(&SigC::ObjectBase::unreference)>();
	expectType<void (SigC::ObjectBase::*)(), decltype(&SigC::ObjectBase::set_manage)>();
}

TEST(Signatures, of_operations_that_are_called)
{
	expectType<Returns<eWidget, const eString &>, decltype(&eWidget::setText)>();
	expectType<Returns<eWidget, const ePoint &>, decltype(&eWidget::cmove)>();
	expectType<Returns<eWidget, const eSize &>, decltype(&eWidget::cresize)>();
	expectType<Returns<eWidget, const ePoint &>, decltype(&eWidget::move)>();
	expectType<Returns<eWidget, const eSize &>, decltype(&eWidget::resize)>();
	expectType<Returns<eWidget>, decltype(&eWidget::show)>();
	expectType<Returns<eWidget>, decltype(&eWidget::hide)>();
	expectType<ReturnsInt<eWidget>, decltype(&eWidget::exec)>();
	expectType<Returns<eWidget>, decltype(&eWidget::accept)>();
	expectType<Returns<eWidget>, decltype(&eWidget::reject)>();
	expectType<Returns<eWidget, eWidget *>, decltype(&eWidget::setFocus)>();
	expectType<Returns<eWidget, const eString &>, decltype(&eWidget::setShortcut)>();
	expectType<Returns<eDecoWidget>, decltype(&eDecoWidget::loadDeco)>();
	expectType<Returns<eLabel, const eString &>, decltype(&eLabel::setShortcutPixmap)>();
	expectType<Returns<eListBoxBase, int>, decltype(&eListBoxBase::setFlags)>();
	expectType<Returns<eListBoxBase, eListBoxEntry *, bool, bool>, decltype(&eListBoxBase::append)>();
	expectType<Returns<eListBoxBase, eListBoxEntry *, bool>, decltype(&eListBoxBase::remove)>();
	expectType<Returns<eListBoxEntryMenu, eListBoxEntry *>, decltype(&eListBoxEntryMenu::LBSelected)>();
	expectType<int (*)(), decltype(&eListBoxEntryText::getEntryHeight)>();
	expectType<eSkin *(*)(), decltype(&eSkin::getActive)>();
	expectType<int (eSkin::*)(const eString &, int) const, decltype(&eSkin::queryValue)>();
	expectType<eString &(eString::*)(char *, ...), decltype(&eString::sprintf)>();
	expectType<void (*)(const char *, ...), decltype(&eDebug)>();
}

TEST(Signatures, of_signals)
{
	expectType<SigC::Signal0<void> eButton::*, decltype(&eButton::selected)>();
	expectType<SigC::Signal0<void> eListBoxEntryMenu::*, decltype(&eListBoxEntryMenu::selected)>();
	using Menu = eListBox<eListBoxEntryMenu>;
	expectType<SigC::Signal1<void, eListBoxEntryMenu *> Menu::*, decltype(&Menu::selected)>();
	expectType<SigC::Signal1<void, eListBoxEntryMenu *> Menu::*, decltype(&Menu::selchanged)>();
	using Texts = eListBox<eListBoxEntryText>;
	expectType<SigC::Signal1<void, eListBoxEntryText *> Texts::*, decltype(&Texts::selected)>();
	expectType<SigC::Signal1<void, eListBoxEntryText *> Texts::*, decltype(&Texts::selchanged)>();
}

TEST(Values, are_two_numbers_in_their_order)
{
	EXPECT_EQ(sizeof(int), 4u);
	expectType<int ePoint::*, decltype(&ePoint::x)>();
	expectType<int ePoint::*, decltype(&ePoint::y)>();
	EXPECT_EQ(offsetof(ePoint, x), 0u);
	EXPECT_EQ(offsetof(ePoint, y), 4u);
	EXPECT_EQ(sizeof(ePoint), 8u);
	expectType<int eSize::*, decltype(&eSize::width)>();
	expectType<int eSize::*, decltype(&eSize::height)>();
	EXPECT_EQ(offsetof(eSize, width), 0u);
	EXPECT_EQ(offsetof(eSize, height), 4u);
	EXPECT_EQ(sizeof(eSize), 8u);
	EXPECT_EQ(sizeof(gColor), 4u);
}

TEST(Values, a_string_is_the_librarys_and_no_more)
{
	EXPECT_TRUE((std::is_base_of_v<std::string, eString>));
	EXPECT_EQ(sizeof(eString), sizeof(std::string));
	EXPECT_FALSE(std::is_polymorphic_v<eString>);
}

template <class Base, class Derived, class = void> constexpr bool isFixedBase = false;
template <class Base, class Derived> constexpr bool
	isFixedBase<Base, Derived, std::void_t<decltype(static_cast<Derived *>(std::declval<Base *>()))>> = true;

/// No static_cast leads from a virtual base to a derived class.
template <class Base, class... Derived> void expectVirtualBase()
{
	EXPECT_TRUE((std::is_convertible_v<Derived *, Base *> && ...)) << __PRETTY_FUNCTION__;
	EXPECT_FALSE((isFixedBase<Base, Derived> || ...)) << __PRETTY_FUNCTION__;
}

TEST(Objects, are_the_virtual_base_of_widgets_and_entries)
{
	ASSERT_TRUE((isFixedBase<eWidget, eWindow>));
	expectVirtualBase<SigC::Object, eWidget, eWindow, eMessageBox, eSetupWindow, eDecoWidget, eLabel, eButton,
	                  eListBoxBase, eListBox<eListBoxEntryText>, eListBoxEntry, eListBoxEntryText,
	                  eListBoxEntryMenu>();
	expectVirtualBase<SigC::ObjectBase, SigC::Object, eWidget, eListBoxEntry>();
	EXPECT_TRUE(std::has_virtual_destructor_v<SigC::ObjectBase>);
}

} // namespace

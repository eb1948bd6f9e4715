#ifndef VEXLO_TOOLKIT_CHECK_H
#define VEXLO_TOOLKIT_CHECK_H

// Looks, while the plugin is compiled, whether toolkit.h has all that the plugin names, so that what is
// missing is one readable error instead of many others.

#include "host_names.h"

#include <type_traits>
#include <utility>

#ifdef __clang__
#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wmismatched-tags" // class or struct: the host decides
#endif

// Declared here as the host declares them; a toolkit.h without one leaves it incomplete.
class eWidget;
class eWindow;
class eSetupWindow;
class eLabel;
class eButton;
class eListBoxBase;
class eListBoxEntry;
class eListBoxEntryText;
class eListBoxEntryMenu;
class eMessageBox;
class eSkin;
class eString;
template <class T> class eListBox;
class ePoint;
class eSize;

#ifdef __clang__
#pragma clang diagnostic pop
#endif

namespace vexlo_check
{

template <class T> auto complete(int) -> decltype(sizeof(T), std::true_type());
template <class T> std::false_type complete(...);

#define VEXLO_IN_PORTING " is missing in toolkit.h; docs/porting.md explains it under \"The names\""
#define VEXLO_NEEDS_CLASS(type) static_assert(decltype(complete<type>(0))::value, #type VEXLO_IN_PORTING)

VEXLO_NEEDS_CLASS(eWidget);
VEXLO_NEEDS_CLASS(eWindow);
VEXLO_NEEDS_CLASS(eSetupWindow);
VEXLO_NEEDS_CLASS(eLabel);
VEXLO_NEEDS_CLASS(eButton);
VEXLO_NEEDS_CLASS(eListBoxBase);
VEXLO_NEEDS_CLASS(eListBoxEntry);
VEXLO_NEEDS_CLASS(eListBoxEntryText);
VEXLO_NEEDS_CLASS(eListBoxEntryMenu);
VEXLO_NEEDS_CLASS(eMessageBox);
VEXLO_NEEDS_CLASS(eSkin);
VEXLO_NEEDS_CLASS(eString);
VEXLO_NEEDS_CLASS(eListBox<eListBoxEntryText>);
VEXLO_NEEDS_CLASS(ePoint);
VEXLO_NEEDS_CLASS(eSize);

// `expression` says `host` for an object of the class; the look is that of a class which derives from
// it, as the plugin's windows do. NOLINTBEGIN(bugprone-macro-parentheses): `id` and `type` are types.
#define VEXLO_NEEDS(id, type, name, expression)                                                              \
	template <class Base> struct id : Base                                                                   \
	{                                                                                                        \
		template <class Host> static auto test(Host *host)                                                   \
			-> decltype(static_cast<void>(expression), std::true_type());                                    \
		static std::false_type test(...);                                                                    \
	};                                                                                                       \
	static_assert(decltype(id<type>::test(static_cast<id<type> *>(nullptr)))::value, name VEXLO_IN_PORTING)

VEXLO_NEEDS(SetText, eWindow, "eWidget::setText", host->setText(eString("")));
VEXLO_NEEDS(Cmove, eWindow, "eWidget::cmove", host->cmove(ePoint(0, 0)));
VEXLO_NEEDS(Cresize, eWindow, "eWidget::cresize", host->cresize(eSize(0, 0)));
VEXLO_NEEDS(Move, eLabel, "eWidget::move", host->move(ePoint(0, 0)));
VEXLO_NEEDS(Resize, eLabel, "eWidget::resize", host->resize(eSize(0, 0)));
VEXLO_NEEDS(Show, eWindow, "eWidget::show", host->show());
VEXLO_NEEDS(Hide, eWindow, "eWidget::hide", host->hide());
VEXLO_NEEDS(Exec, eWindow, "eWidget::exec", static_cast<int>(host->exec()));
VEXLO_NEEDS(Accept, eWindow, "eWidget::accept", host->accept());
VEXLO_NEEDS(Reject, eWindow, "eWidget::reject", host->reject());
VEXLO_NEEDS(SetFocus, eWindow, "eWidget::setFocus", host->setFocus(static_cast<eWidget *>(nullptr)));
VEXLO_NEEDS(SetShortcut, eButton, "eWidget::setShortcut", host->setShortcut(eString("")));
VEXLO_NEEDS(SetShortcutPixmap, eButton, "eLabel::setShortcutPixmap", host->setShortcutPixmap(eString("")));
VEXLO_NEEDS(LoadDeco, eButton, "eDecoWidget::loadDeco", host->loadDeco());
VEXLO_NEEDS(Pressed, eButton, "eButton::selected", host->selected);
VEXLO_NEEDS(SetFlags, eListBox<eListBoxEntryText>, "eListBoxBase::setFlags", host->setFlags(0));
VEXLO_NEEDS(Selected, eListBox<eListBoxEntryText>, "eListBox::selected", host->selected);
VEXLO_NEEDS(Chosen, eListBoxEntryMenu, "eListBoxEntryMenu::selected", host->selected);
VEXLO_NEEDS(EntryHeight, eListBoxEntryText, "eListBoxEntryText::getEntryHeight",
            static_cast<int>(Host::getEntryHeight()));
VEXLO_NEEDS(GetActive, eSkin, "eSkin::getActive", Host::getActive());
VEXLO_NEEDS(QueryValue, eSkin, "eSkin::queryValue", static_cast<int>(host->queryValue(eString(""), 0)));
VEXLO_NEEDS(Sprintf, eString, "eString::sprintf", host->sprintf(static_cast<char *>(nullptr)));
VEXLO_NEEDS(ClientHeight, eWindow, "VEXLO_CLIENT_HEIGHT (or getClientRect)",
            static_cast<int>(VEXLO_CLIENT_HEIGHT(*host)));
VEXLO_NEEDS(MenuList, eSetupWindow, "VEXLO_MENU_LIST (or list)",
            static_cast<eListBox<eListBoxEntryMenu> *>(&VEXLO_MENU_LIST(*host)));
VEXLO_NEEDS(EntryKey, eListBoxEntryText, "VEXLO_ENTRY_KEY (or getKey)",
            static_cast<const void *>(VEXLO_ENTRY_KEY(*host)));

// NOLINTEND(bugprone-macro-parentheses)
#undef VEXLO_NEEDS
#undef VEXLO_NEEDS_CLASS
#undef VEXLO_IN_PORTING

} // namespace vexlo_check

#endif

// Replaces the contract's headers by the vendor's, and defines the names that differ.
#ifndef VENDOR_TOOLKIT_H
#define VENDOR_TOOLKIT_H

#include "gui/gui.h"

#define VEXLO_CLIENT_HEIGHT(window) ((window).inner.bottomEdge() - (window).inner.topEdge())
#define VEXLO_MENU_LIST(menu) ((menu).entries)
#define VEXLO_ENTRY_KEY(entry) ((entry).data())
#define VEXLO_ANSWER_YES eMessageBox::answerYes
#define VEXLO_ANSWER_NO eMessageBox::answerNo

#endif

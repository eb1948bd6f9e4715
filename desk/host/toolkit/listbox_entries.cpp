#include "desk.h"
#include "elistbox.h"
#include "list.h"
#include "state.h"
#include "trace.h"

using desk::Desk;
using desk::Trace;

int eListBoxEntryText::getEntryHeight()
{
	const int height = Desk::get().fontSize();
	Trace::get().result(height, "eListBoxEntryText.getEntryHeight");
	return height;
}

void eListBoxEntryText::redraw(gPainter *target, const eRect &area, gColor currentBack, gColor currentText,
                               gColor, gColor textColor, int isCurrent)
{
	const desk::Rect row = target->onScreen(area);
	desk::TextStyle style;
	style.color = gPainter::color(isCurrent ? currentText : textColor);
	style.rowHeight = area.height();
	if (isCurrent) {
		const bool idle = Desk::get().windows().focus() != listbox;
		style.emphasis = idle ? desk::Emphasis::dim : desk::Emphasis::current;
		target->canvas.fill(row, desk::Fill::plain(gPainter::color(currentBack), 0,
		                                           idle ? desk::Part::idleLine : desk::Part::currentLine));
	}
	// Menu lines are prose. Other lines come from programs, with columns made of blanks.
	int inset = Desk::get().skin().decoration("eListBox").padding;
	int right = 0; // columns may extend to the edge
	if (dynamic_cast<const eListBoxEntryMenu *>(this)) {
		style.face = desk::Face::prose;
		inset += desk::menuInset;
		right = inset; // right-to-left text begins here
	}
	target->canvas.text({row.x + inset, row.y, row.w - inset - right, row.h}, text, style);
}

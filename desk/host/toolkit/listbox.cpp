#include "elistbox.h"

#include "deco.h"
#include "desk.h"
#include "list.h"
#include "mistakes.h"
#include "state.h"
#include "trace.h"

#include <algorithm>
#include <utility>

using desk::barWidth;
using desk::Desk;
using desk::Fill;
using desk::Key;
using desk::Rect;
using desk::Trace;

eListBoxBase::eListBoxBase(eWidget *parent, const eWidget *description, int takefocus, int entryHeight,
                           const char *decoration)
	: eDecoWidget(Trace::Quiet().with(parent), takefocus, decoration), list(new List(*this))
{
	list->entryHeight = std::max(1, entryHeight);
	Trace::get().constructed(this, "eListBoxBase", parent, description, takefocus, entryHeight, decoration);
	desk::checkDecoration(*this, decoration);
}

eListBoxBase::~eListBoxBase()
{
	list->dispose();
	delete list;
}

void eListBoxBase::List::dispose()
{
	current = top = 0;
	isGoing = true;
	bool reported = false; // one report for millions of entries
	// One by one, because an entry's destructor may remove or delete others.
	for (int number = 0; !entries.empty(); ++number) {
		eListBoxEntry *const entry = entries.front();
		entries.pop_front();
		entry->listbox = nullptr;
		// A text entry owns its key, an eString.
		const eListBoxEntryText *text = dynamic_cast<eListBoxEntryText *>(entry);
		// The check costs system calls. After a thousand strings, assume that the other keys are strings too.
		const bool looks = reported || number < 1000;
		if (text && text->getKey() && (!looks || desk::isString(text->getKey())))
			delete static_cast<eString *>(text->getKey());
		else if (text && text->getKey() && !std::exchange(reported, true))
			Desk::get().reportMistake(
				box, "the key of an entry is no eString made with new, as the list box would delete: \"" +
						 text->getText() + '"');
		Trace::get().forget(entry);
		delete entry;
	}
}

int eListBoxBase::List::rows() const
{
	return std::max(1, State::of(box).height / entryHeight);
}

int eListBoxBase::List::shown() const
{
	return std::clamp(count() - top, 0, rows());
}

void eListBoxBase::List::keepInRange()
{
	current = std::clamp(current, 0, std::max(0, count() - 1));
	top = std::clamp(top, 0, std::max(0, count() - rows()));
	if (current < top)
		top = current;
	else if (current >= top + rows())
		top = current - rows() + 1;
}

void eListBoxBase::List::tellMove(eListBoxEntry *to)
{
	Trace::get().emits(&box, "selchanged", to);
	box.SendSelChanged(to);
}

void eListBoxBase::List::tellChoice(eListBoxEntry *of)
{
	Trace::get().emits(&box, "selected", of);
	box.SendSelected(of);
}

void eListBoxBase::List::moveTo(int index)
{
	const int before = current;
	current = index;
	keepInRange();
	if (current != before)
		tellMove(entries[static_cast<size_t>(current)]);
}

void eListBoxBase::List::choose(int index)
{
	if (index < 0 || index >= count())
		return;
	// A slot may delete the list or the entry.
	const std::weak_ptr<eListBoxEntry *> living = chosen;
	*chosen = entries[static_cast<size_t>(index)];
	moveTo(index);
	if (!living.expired() && *chosen && currentEntry() == std::exchange(*chosen, nullptr))
		confirm();
}

void eListBoxBase::List::confirm()
{
	// Does nothing in an empty list: null would mean that the viewer leaves it.
	if (!entries.empty())
		tellChoice(entries[static_cast<size_t>(current)]);
}

void eListBoxBase::List::leave()
{
	// A slot may end the window or delete the list.
	eWidget &window = State::window(box);
	tellChoice(nullptr);
	Desk::get().leave(window);
}

void eListBoxBase::setFlags(int flags)
{
	// Only other hosts have options.
	Trace::get().call(this, "setFlags", flags);
}

void eListBoxBase::append(eListBoxEntry *entry, bool makeCurrent, bool atTop)
{
	Trace::get().call(this, "append", entry, makeCurrent, atTop);
	if (!entry)
		return;
	entry->listbox = this; // may have been in no list
	if (atTop)
		list->entries.push_front(entry);
	else
		list->entries.push_back(entry);
	if (makeCurrent)
		list->current = atTop ? 0 : list->count() - 1;
	else if (atTop && list->count() > 1)
		++list->current; // keeps the same entry current
}

void eListBoxBase::remove(eListBoxEntry *entry, bool fromDestruction)
{
	Trace::get().call(this, "remove", entry, fromDestruction);
	const auto place = std::find(list->entries.begin(), list->entries.end(), entry);
	if (place == list->entries.end())
		return;
	const int index = static_cast<int>(place - list->entries.begin());
	const bool wasCurrent = index == list->current;
	if (index < list->current)
		--list->current;
	list->entries.erase(place);
	list->current = std::clamp(list->current, 0, std::max(0, list->count() - 1));
	entry->listbox = nullptr; // the entry may outlive the list
	if (*list->chosen == entry)
		*list->chosen = nullptr;
	Trace::get().forget(entry);
	if (wasCurrent && !list->isGoing)
		list->tellMove(list->entries.empty() ? nullptr : list->entries[static_cast<size_t>(list->current)]);
}

void eListBoxBase::gotFocus() {}
void eListBoxBase::lostFocus() {}

void eListBoxBase::recalcClientRect()
{
	eDecoWidget::recalcClientRect();
}

int eListBoxBase::eventHandler(const eWidgetEvent &event)
{
	list->keepInRange();
	const int count = list->count();
	const int page = list->rows();
	switch (event.key) {
	case Key::up:
		if (count)
			list->moveTo(list->current > 0 ? list->current - 1 : count - 1);
		return 1;
	case Key::down:
		if (count)
			list->moveTo(list->current + 1 < count ? list->current + 1 : 0);
		return 1;
	case Key::pageup:
		if (count) {
			list->top -= page;
			list->moveTo(list->current - page);
		}
		return 1;
	case Key::pagedown:
		if (count) {
			list->top += page;
			list->moveTo(list->current + page);
		}
		return 1;
	case Key::home:
		if (count)
			list->moveTo(0);
		return 1;
	case Key::end:
		if (count)
			list->moveTo(count - 1);
		return 1;
	case Key::ok:
		list->confirm();
		return 1;
	case Key::exit:
		list->leave();
		return 1;
	default:
		return eDecoWidget::eventHandler(event);
	}
}

void eListBoxBase::redrawWidget(gPainter *target, const eRect &)
{
	list->keepInRange();
	desk::Canvas &canvas = target->canvas;
	const desk::Decoration &decoration = *deco->decoration;
	const Rect area{target->x, target->y, state->width, state->height};
	const desk::Color back =
		decoration.background ? decoration.background->top : Desk::get().skin().window.client;
	if (decoration.background)
		canvas.fill(area, *decoration.background);

	const bool focused = Desk::get().windows().focus() == this;
	const bool scrolls = list->scrolls();
	const int rowWidth = state->width - (scrolls ? barWidth + 4 : 0);
	const gColor currentBack = gPainter::index(focused ? decoration.current : decoration.currentUnfocused);
	const gColor currentText = gPainter::index(decoration.currentText);
	const gColor plainBack = gPainter::index(back);
	const gColor plainText = gPainter::index(decoration.text);
	for (int i = 0; i < list->shown(); ++i) {
		const int index = list->top + i;
		const int y = i * list->entryHeight;
		const eRect row(0, y, rowWidth, y + list->entryHeight);
		list->entries[static_cast<size_t>(index)]->redraw(target, row, currentBack, currentText, plainBack,
		                                                  plainText, index == list->current);
	}

	if (scrolls) {
		const Rect bar{area.right() - barWidth, area.y, barWidth, area.h};
		canvas.fill(bar, Fill::plain(decoration.bar, barWidth / 2, desk::Part::track));
		const int64_t count = list->count();
		const int thumb =
			std::max<int>(list->entryHeight, static_cast<int>(area.h * int64_t{list->rows()} / count));
		const int64_t way = area.h - thumb;
		const int64_t last = count - list->rows(); // the largest `top`
		const int y = static_cast<int>(way * list->top / last);
		canvas.fill({bar.x, bar.y + y, bar.w, thumb},
		            Fill::plain(decoration.barThumb, barWidth / 2, desk::Part::thumb));
	}
}

int eListBoxBase::setProperty(const eString &name, const eString &value)
{
	return eDecoWidget::setProperty(name, value);
}

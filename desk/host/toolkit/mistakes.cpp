#include "mistakes.h"

#include "deco.h"
#include "desk.h"
#include "elistbox.h"
#include "label.h"
#include "list.h"
#include "state.h"
#include "trace.h"
#include "visible_text.h"

#include <sys/uio.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <string>

namespace desk
{

namespace
{

std::string quoted(const std::string &text)
{
	return '"' + text + '"';
}

void lookAtColours(const State &window)
{
	for (auto one = window.children.begin(); one != window.children.end(); ++one) {
		const State &state = State::of(**one);
		if (!state.visible || !colourNamed(state.shortcut))
			continue;
		const auto other = std::find_if(one + 1, window.children.end(), [&](const eWidget *widget) {
			return State::of(*widget).visible && State::of(*widget).shortcut == state.shortcut;
		});
		if (other != window.children.end())
			Desk::get().reportMistake(**other, quoted(state.text) + " has the key " + quoted(state.shortcut) +
			                                       " already, which presses only that; give it another one");
	}
}

/// Ignores texts of several lines: they are data of any length.
void lookAtText(const eWidget &widget, const State &state)
{
	const auto *label = dynamic_cast<const LabelBehaviour *>(state.behaviour.get());
	if (!label || label->wraps || state.text.find('\n') != std::string::npos)
		return;
	const int room = label->room(state) / pixelsOfColumn(Desk::get().fontSize());
	// A long text's start is enough.
	const std::string start = state.text.substr(0, 4 * static_cast<size_t>(std::max(0, room) + 1));
	if (textColumns(visibleText(start)) > room)
		Desk::get().reportMistake(widget, "its text is cut off, because there is room for " +
		                                      std::to_string(room) +
		                                      " characters only: " + quoted(state.text));
}

void lookAtSize(const eWidget &widget, const State &state)
{
	const auto *list = dynamic_cast<const eListBoxBase *>(&widget);
	if (!state.text.empty() || (list && eListBoxBase::List::of(*list).count() > 0))
		Desk::get().reportMistake(widget,
		                          "it has no size and is not seen; call resize(): " + quoted(state.text));
}

} // namespace

void lookForMistakes(const Windows &windows)
{
	for (const eWidget *window : windows.visible()) {
		lookAtColours(State::of(*window));
		for (const eWidget *child : State::of(*window).children) {
			const State &state = State::of(*child);
			if (!state.visible)
				continue;
			if (state.width <= 0 || state.height <= 0)
				lookAtSize(*child, state);
			else
				lookAtText(*child, state);
		}
	}
}

void checkDecoration(const eWidget &widget, const char *name)
{
	// Ignores parts of a composed widget.
	if (name && !Trace::get().isQuiet() && !Desk::get().skin().knows(name))
		Desk::get().reportMistake(widget, "the skin has no decoration " + quoted(name) +
		                                      "; it has eLabel, eButton and eListBox");
}

void checkColour(const eWidget &widget, const char *operation, const std::string &key)
{
	if (!key.empty() && !colourNamed(key))
		Desk::get().reportMistake(widget, operation + ('(' + quoted(key)) +
		                                      "): no colour key; the names are red, green, yellow and blue");
}

bool isString(const void *key)
{
	// The kernel reads, because the key may not be an address.
	const auto read = [](const void *from, void *to, size_t size) {
		iovec here = {to, size}, there = {const_cast<void *>(from), size};
		errno = 0;
		return process_vm_readv(getpid(), &here, 1, &there, 1, 0) == static_cast<ssize_t>(size);
	};
	// The layout of std::string since libstdc++ 5: pointer, size, and a small buffer.
	struct
	{
		const char *bytes;
		size_t size;
		size_t capacity;
		size_t more;
	} string = {};
	static_assert(sizeof(eString) == 2 * sizeof(size_t) + 16);
	char end = '\0';
	if (!read(key, &string, sizeof string))
		return errno == ENOSYS || errno == EPERM; // an emulator, or a kernel that forbids it: assume a string
	const bool isShort = string.bytes == static_cast<const char *>(key) + 2 * sizeof(size_t);
	return string.size <= (isShort ? 15 : string.capacity) && read(string.bytes + string.size, &end, 1) &&
	       end == '\0';
}

} // namespace desk

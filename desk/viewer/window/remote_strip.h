#ifndef DESK_WINDOW_REMOTE_STRIP_H
#define DESK_WINDOW_REMOTE_STRIP_H

#include "canvas.h"
#include "key.h"

#include <variant>

namespace desk
{

/// What a viewer can ask of the window, other than the keys of the remote control.
enum class Command
{
	savePicture,
	fullScreen,
	showNotes,
};

using Action = std::variant<Key, Command>;

/// The strip's size in pixels; it is as wide as the picture above it.
constexpr int stripHeight = 96;

/// A button of the strip. `area`: its place, from the strip's upper left corner.
struct StripButton
{
	Rect area;
	const char *label;
	Action action;
};

/// Draws the remote control at the canvas's upper edge.
void drawStrip(Canvas &canvas);

/// The button at this place of the strip, null when there is none.
const StripButton *stripButtonAt(int x, int y);

} // namespace desk

#endif

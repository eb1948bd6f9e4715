#ifndef DESK_WINDOW_REMOTE_STRIP_H
#define DESK_WINDOW_REMOTE_STRIP_H

#include "canvas.h"
#include "key.h"

#include <variant>

namespace desk
{

/// The window's own commands besides the keys of the remote control.
enum class Command
{
	savePicture,
	fullScreen,
	showNotes,
};

using Action = std::variant<Key, Command>;

/// In pixels; the strip is as wide as the picture above it.
constexpr int stripHeight = 96;

/// A button. `area`: relative to the strip's upper left corner.
struct StripButton
{
	Rect area;
	const char *label;
	Action action;
};

/// Draws the strip at the top of the canvas.
void drawStrip(Canvas &canvas);

/// The button at this position of the strip, or null.
const StripButton *stripButtonAt(int x, int y);

} // namespace desk

#endif

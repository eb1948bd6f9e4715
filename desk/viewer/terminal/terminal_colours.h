#ifndef DESK_TERMINAL_TERMINAL_COLOURS_H
#define DESK_TERMINAL_TERMINAL_COLOURS_H

#include "canvas.h"

namespace desk
{

/// The number of a terminal's colours.
enum class ColourDepth
{
	none,
	eight,
	indexed, ///< 256: the usual colour cube and greys
};

/// The terminal's colours by its description, after setupterm(). NO_COLOR turns them off.
ColourDepth terminalColours();

/// The terminal's number of the colour nearest to `color`; not for ColourDepth::none.
int colourNumber(Color color, ColourDepth depth);

/// The number for `text`, or for black or white if `text` is not legible on `ground`.
int legibleColour(Color text, Color ground, ColourDepth depth);

} // namespace desk

#endif

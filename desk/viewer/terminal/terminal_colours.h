#ifndef DESK_TERMINAL_TERMINAL_COLOURS_H
#define DESK_TERMINAL_TERMINAL_COLOURS_H

#include "canvas.h"

namespace desk
{

/// How many colours a terminal has.
enum class ColourDepth
{
	none,
	eight,
	indexed, ///< 256: the usual cube and ramp of greys
};

/// What the terminal can show by its description; setupterm() has been called. NO_COLOR turns colours off.
ColourDepth terminalColours();

/// The terminal's own number of the colour that is nearest to `color`; not for ColourDepth::none.
int colourNumber(Color color, ColourDepth depth);

/// The number for `text`, or for black or white where that one is not legible on `ground`.
int legibleColour(Color text, Color ground, ColourDepth depth);

} // namespace desk

#endif

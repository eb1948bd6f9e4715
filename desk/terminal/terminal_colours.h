#ifndef DESK_TERMINAL_TERMINAL_COLOURS_H
#define DESK_TERMINAL_TERMINAL_COLOURS_H

#include "canvas.h"

#include <string>

namespace desk
{

/// How many colours a terminal has.
enum class ColourDepth
{
	none,
	eight,
	sixteen,
	indexed, ///< 256: the usual cube and ramp of greys
	direct,  ///< any colour, by its red, green and blue
};

/// What the terminal can show, by its description (setupterm() has been called) and by what it says of
/// itself in COLORTERM. NO_COLOR turns colours off.
ColourDepth terminalColours();

/// The terminal's own number of the colour that is nearest to `color`; not for ColourDepth::none.
int colourNumber(Color color, ColourDepth depth);

/// The number for `text`, or for a colour that is legible on `ground` when that one is not.
int legibleColour(Color text, Color ground, ColourDepth depth);

/// True when the terminal's description itself takes red, green and blue for a colour.
bool describesDirectColours();

/// The terminal's description with direct colours put in, in the form that TERMINFO takes in place of
/// a folder. Many terminals have such colours and are described as if they had not. `name` is the
/// terminal's, setupterm() has been called for it.
std::string withDirectColours(const std::string &name);

} // namespace desk

#endif

#include "terminal_colours.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

#include <curses.h>
#include <term.h>

namespace desk
{
namespace
{

int lightness(Color color)
{
	return (299 * color.r + 587 * color.g + 114 * color.b) / 1000;
}

// By hue, not by distance: a dull blue must become blue.
int nearestOfEight(Color color)
{
	const int most = std::max({color.r, color.g, color.b});
	const int least = std::min({color.r, color.g, color.b});
	if (most < 96)
		return COLOR_BLACK;
	if (most - least <= most / 4)
		return COLOR_WHITE;
	const int middle = (most + least) / 2;
	return (color.r > middle ? 1 : 0) | (color.g > middle ? 2 : 0) | (color.b > middle ? 4 : 0);
}

// Not one of the first 16, which differ between terminals.
int nearestOfCube(Color color)
{
	static constexpr int steps[] = {0, 95, 135, 175, 215, 255};
	const auto step = [](int value) {
		const auto closer = [&](int a, int b) { return std::abs(a - value) < std::abs(b - value); };
		return static_cast<int>(std::min_element(std::begin(steps), std::end(steps), closer) - steps);
	};
	const auto distance = [&](int r, int g, int b) {
		return 3 * (r - color.r) * (r - color.r) + 4 * (g - color.g) * (g - color.g) +
		       2 * (b - color.b) * (b - color.b);
	};
	const int r = step(color.r), g = step(color.g), b = step(color.b);
	const int grey = std::clamp(((color.r + color.g + color.b) / 3 - 3) / 10, 0, 23);
	const int light = 8 + 10 * grey;
	if (distance(light, light, light) < distance(steps[r], steps[g], steps[b]))
		return 232 + grey;
	return 16 + 36 * r + 6 * g + b;
}

} // namespace

ColourDepth terminalColours()
{
	const char *refused = std::getenv("NO_COLOR");
	const int colours = tigetnum("colors");
	if ((refused && *refused) || colours < 8)
		return ColourDepth::none;
	return colours == 256 ? ColourDepth::indexed : ColourDepth::eight;
}

int colourNumber(Color color, ColourDepth depth)
{
	return depth == ColourDepth::indexed ? nearestOfCube(color) : nearestOfEight(color);
}

int legibleColour(Color text, Color ground, ColourDepth depth)
{
	const int number = colourNumber(text, depth);
	const int below = colourNumber(ground, depth);
	// With eight colours, the text may no longer contrast with the ground.
	static constexpr int lights[] = {0, 61, 120, 181, 27, 84, 143, 229};
	if (depth == ColourDepth::eight && std::abs(lights[number] - lights[below]) < 100)
		return lights[below] > 120 ? COLOR_BLACK : COLOR_WHITE;
	if (number == below)
		return colourNumber(lightness(ground) > 128 ? Color{0, 0, 0} : Color{255, 255, 255}, depth);
	return number;
}

} // namespace desk

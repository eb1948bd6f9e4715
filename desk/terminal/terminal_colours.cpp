#include "terminal_colours.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <vector>

#include <curses.h>
#include <term.h>

// The macros of these headers name everything; what is used here is not among them.
#undef lines

namespace desk
{
namespace
{

constexpr int directColours = 1 << 24;

// The eight colours of every terminal, then their bright ones.
constexpr Color ansi[] = {
	{0, 0, 0},     {205, 0, 0},     {0, 205, 0},     {205, 205, 0},   {0, 0, 238}, {205, 0, 205},
	{0, 205, 205}, {229, 229, 229}, {127, 127, 127}, {255, 0, 0},     {0, 255, 0}, {255, 255, 0},
	{92, 92, 255}, {255, 0, 255},   {0, 255, 255},   {255, 255, 255},
};

int distance(Color a, Color b)
{
	const int r = a.r - b.r, g = a.g - b.g, bl = a.b - b.b;
	return 3 * r * r + 4 * g * g + 2 * bl * bl;
}

int lightness(Color color)
{
	return (299 * color.r + 587 * color.g + 114 * color.b) / 1000;
}

// By hue rather than by distance: with so few colours, a dull blue is still to be blue.
int nearestAnsi(Color color, bool bright)
{
	const int most = std::max({color.r, color.g, color.b});
	const int least = std::min({color.r, color.g, color.b});
	if (most < 96)
		return 0;
	if (most - least > most / 4) {
		const int middle = (most + least) / 2;
		const int hue = (color.r > middle ? 1 : 0) | (color.g > middle ? 2 : 0) | (color.b > middle ? 4 : 0);
		return hue + (bright && most > 230 ? 8 : 0);
	}
	if (bright && lightness(color) < 180)
		return 8;
	return bright && lightness(color) > 240 ? 15 : 7;
}

// The first 16 of the 256 differ from terminal to terminal, the cube and the greys do not.
int nearestIndexed(Color color)
{
	static constexpr int steps[] = {0, 95, 135, 175, 215, 255};
	const auto step = [](int value) {
		const auto best = std::min_element(
			steps, steps + 6, [&](int a, int b) { return std::abs(a - value) < std::abs(b - value); });
		return static_cast<int>(best - steps);
	};
	const auto level = [](int value) { return static_cast<uint8_t>(value); };
	const int r = step(color.r), g = step(color.g), b = step(color.b);
	const Color cube{level(steps[r]), level(steps[g]), level(steps[b])};
	const int grey = std::clamp(((color.r + color.g + color.b) / 3 - 3) / 10, 0, 23);
	const uint8_t light = level(8 + 10 * grey);
	if (distance({light, light, light}, color) < distance(cube, color))
		return 232 + grey;
	return 16 + 36 * r + 6 * g + b;
}

bool isSet(const char *variable)
{
	const char *value = getenv(variable);
	return value && *value;
}

bool hasExtension(const char *name)
{
	const char *text = tigetstr(name);
	return tigetflag(name) > 0 || tigetnum(name) > 0 || (text && text != reinterpret_cast<char *>(-1));
}

/// Writes the compiled form of a description; see term(5).
class Compiled
{
public:
	void byte(int value) { bytes.push_back(static_cast<char>(value)); }
	void two(int value)
	{
		byte(value & 0xFF);
		byte(value >> 8 & 0xFF);
	}
	void four(int value)
	{
		two(value & 0xFFFF);
		two(value >> 16 & 0xFFFF);
	}
	void add(const std::string &text) { bytes += text; }
	void even()
	{
		if (bytes.size() % 2)
			byte(0);
	}
	std::string hex() const
	{
		static const char digits[] = "0123456789abcdef";
		std::string out = "hex:";
		for (const char c : bytes) {
			out += digits[static_cast<unsigned char>(c) >> 4];
			out += digits[static_cast<unsigned char>(c) & 15];
		}
		return out;
	}

private:
	std::string bytes;
};

} // namespace

ColourDepth terminalColours()
{
	if (isSet("NO_COLOR"))
		return ColourDepth::none;
	const int colours = tigetnum("colors");
	if (colours < 8)
		return ColourDepth::none;
	if (hasExtension("RGB") || hasExtension("Tc"))
		return ColourDepth::direct;
	// Screen hands on what the terminal around it has said, but not its colours.
	if (const char *says = getenv("COLORTERM"); says && !isSet("STY")) {
		const std::string_view word = says;
		if (word == "truecolor" || word == "24bit")
			return ColourDepth::direct;
	}
	return colours >= 256 ? ColourDepth::indexed : colours >= 16 ? ColourDepth::sixteen : ColourDepth::eight;
}

int colourNumber(Color color, ColourDepth depth)
{
	switch (depth) {
	case ColourDepth::direct:
		// The numbers below 8 are still the eight old colours.
		return std::max((color.r * 256 + color.g) * 256 + color.b, color.r + color.g + color.b ? 8 : 16);
	case ColourDepth::indexed:
		return nearestIndexed(color);
	case ColourDepth::sixteen:
		return nearestAnsi(color, true);
	default:
		return nearestAnsi(color, false);
	}
}

int legibleColour(Color text, Color ground, ColourDepth depth)
{
	const bool coarse = depth == ColourDepth::eight || depth == ColourDepth::sixteen;
	const int number = colourNumber(text, depth);
	const int below = colourNumber(ground, depth);
	if (coarse) {
		// Colours that were made for each other may not be any more.
		const int light = lightness(ansi[below]);
		if (std::abs(light - lightness(ansi[number])) < 100)
			return light > 120 ? 0 : 7;
	}
	if (number == below)
		return colourNumber(lightness(ground) > 128 ? Color{0, 0, 0} : Color{255, 255, 255}, depth);
	return number;
}

bool describesDirectColours()
{
	return hasExtension("RGB") && tigetnum("colors") >= directColours;
}

std::string withDirectColours(const std::string &name)
{
	std::vector<int> flags, numbers;
	for (const char *const *each = boolnames; *each; ++each)
		flags.push_back(std::max(tigetflag(*each), 0));
	for (const char *const *each = numnames; *each; ++each) {
		const std::string_view number = *each;
		numbers.push_back(number == "colors" ? directColours : number == "pairs" ? 0x10000 : tigetnum(*each));
	}
	std::vector<int> offsets;
	std::string table;
	for (const char *const *each = strnames; *each; ++each) {
		const std::string_view string = *each;
		const char *value = tigetstr(*each);
		const auto colour = [](int layer) {
			const std::string n = std::to_string(layer);
			return "\033[%?%p1%{8}%<%t" + n + "%p1%d%e" + n +
			       "8;2;%p1%{65536}%/%d;%p1%{256}%/%{255}%&%d;%p1%{255}%&%d%;m";
		};
		std::string text;
		if (string == "setaf")
			text = colour(3);
		else if (string == "setab")
			text = colour(4);
		else if (string == "initc" || string == "oc" || !value || value == reinterpret_cast<char *>(-1)) {
			offsets.push_back(-1);
			continue;
		} else
			text = value;
		offsets.push_back(static_cast<int>(table.size()));
		table += text + '\0';
	}

	Compiled out;
	out.two(01036); // numbers of 32 bits
	out.two(static_cast<int>(name.size()) + 1);
	out.two(static_cast<int>(flags.size()));
	out.two(static_cast<int>(numbers.size()));
	out.two(static_cast<int>(offsets.size()));
	out.two(static_cast<int>(table.size()));
	out.add(name + '\0');
	for (const int flag : flags)
		out.byte(flag);
	out.even();
	for (const int number : numbers)
		out.four(number < 0 ? -1 : number);
	for (const int offset : offsets)
		out.two(offset);
	out.add(table);
	out.even();

	// Extensions: that default colours can be had again, that colours are direct, and how lines are drawn.
	const bool defaults = tigetflag("AX") > 0;
	const int lineDrawing = tigetnum("U8");
	std::vector<std::string> names;
	if (defaults)
		names.emplace_back("AX");
	names.emplace_back("RGB");
	const int extraFlags = static_cast<int>(names.size());
	if (lineDrawing >= 0)
		names.emplace_back("U8");
	std::string nameTable;
	std::vector<int> nameOffsets;
	for (const std::string &each : names) {
		nameOffsets.push_back(static_cast<int>(nameTable.size()));
		nameTable += each + '\0';
	}
	out.two(extraFlags);
	out.two(lineDrawing >= 0 ? 1 : 0);
	out.two(0);
	out.two(static_cast<int>(names.size()));
	out.two(static_cast<int>(nameTable.size()));
	for (int i = 0; i < extraFlags; ++i)
		out.byte(1);
	out.even();
	if (lineDrawing >= 0)
		out.four(lineDrawing);
	for (const int offset : nameOffsets)
		out.two(offset);
	out.add(nameTable);
	return out.hex();
}

} // namespace desk

#include "remote_strip.h"

#include <optional>

namespace desk
{
namespace
{

// Two rows of buttons in groups, with wider gaps between groups.
constexpr int margin = 10;
constexpr int gap = 6, wideGap = 16;
constexpr int buttonHeight = 35;
constexpr int upperRow = margin, lowerRow = margin + buttonHeight + gap;
static_assert(lowerRow + buttonHeight + margin == stripHeight, "the rows fill the strip");

constexpr int moveWidth = 46, mainWidth = 68, colourWidth = 52, digitWidth = 33, wordsWidth = 82;
constexpr int movesLeft = margin;
constexpr int mainLeft = movesLeft + 4 * moveWidth + 3 * gap + wideGap;
constexpr int coloursLeft = mainLeft + 2 * mainWidth + gap + wideGap;
constexpr int wordsLeft = screenWidth - margin - wordsWidth;
static_assert(coloursLeft + 4 * colourWidth + 3 * gap + wideGap == wordsLeft, "the upper row is full");
static_assert(mainLeft + 10 * digitWidth + 9 * gap + wideGap <= wordsLeft, "the digits have room");

constexpr Rect cell(int left, int width, int index, int row)
{
	return {left + index * (width + gap), row, width, buttonHeight};
}

constexpr Rect digit(int index)
{
	return cell(mainLeft, digitWidth, index, lowerRow);
}

constexpr StripButton buttons[] = {
	{cell(movesLeft, moveWidth, 0, upperRow), "◀", Key::left},
	{cell(movesLeft, moveWidth, 1, upperRow), "▲", Key::up},
	{cell(movesLeft, moveWidth, 2, upperRow), "▼", Key::down},
	{cell(movesLeft, moveWidth, 3, upperRow), "▶", Key::right},
	{cell(mainLeft, mainWidth, 0, upperRow), "OK", Key::ok},
	{cell(mainLeft, mainWidth, 1, upperRow), "Exit", Key::exit},
	{cell(coloursLeft, colourWidth, 0, upperRow), "R", Key::red},
	{cell(coloursLeft, colourWidth, 1, upperRow), "G", Key::green},
	{cell(coloursLeft, colourWidth, 2, upperRow), "Y", Key::yellow},
	{cell(coloursLeft, colourWidth, 3, upperRow), "B", Key::blue},
	{cell(wordsLeft, wordsWidth, 0, upperRow), "Full screen", Command::fullScreen},
	{cell(movesLeft, moveWidth, 0, lowerRow), "Home", Key::home},
	{cell(movesLeft, moveWidth, 1, lowerRow), "PgUp", Key::pageup},
	{cell(movesLeft, moveWidth, 2, lowerRow), "PgDn", Key::pagedown},
	{cell(movesLeft, moveWidth, 3, lowerRow), "End", Key::end},
	{digit(0), "1", Key::digit1},
	{digit(1), "2", Key::digit2},
	{digit(2), "3", Key::digit3},
	{digit(3), "4", Key::digit4},
	{digit(4), "5", Key::digit5},
	{digit(5), "6", Key::digit6},
	{digit(6), "7", Key::digit7},
	{digit(7), "8", Key::digit8},
	{digit(8), "9", Key::digit9},
	{digit(9), "0", Key::digit0},
	{cell(wordsLeft, wordsWidth, 0, lowerRow), "Picture", Command::savePicture},
};

// Fixed colours: the skin applies only to the screen above.
constexpr Color ground = {12, 18, 25}, edge = {44, 61, 79};
constexpr Color buttonTop = {50, 68, 87}, buttonBottom = {34, 48, 63};
constexpr Color letters = {238, 243, 247}, commandLetters = {169, 188, 205}, ink = {20, 16, 10};

struct ColourFill
{
	Color top, bottom;
};

std::optional<ColourFill> colourOf(const Action &action)
{
	const Key *key = std::get_if<Key>(&action);
	if (!key)
		return std::nullopt;
	switch (*key) {
	case Key::red:
		return ColourFill{{236, 104, 108}, {219, 68, 73}};
	case Key::green:
		return ColourFill{{94, 195, 121}, {60, 168, 90}};
	case Key::yellow:
		return ColourFill{{248, 232, 116}, {238, 215, 62}};
	case Key::blue:
		return ColourFill{{116, 166, 250}, {75, 137, 236}};
	default:
		return std::nullopt;
	}
}

} // namespace

void drawStrip(Canvas &canvas)
{
	canvas.fill({0, 0, screenWidth, stripHeight}, Fill::plain(ground));
	canvas.fill({0, 0, screenWidth, 1}, Fill::plain(edge));
	for (const StripButton &button : buttons) {
		const std::optional<ColourFill> colour = colourOf(button.action);
		const bool command = std::holds_alternative<Command>(button.action);
		if (colour)
			canvas.fill(button.area, {colour->top, colour->bottom, buttonHeight / 2});
		else if (command)
			canvas.fill(button.area, {buttonBottom, ground, 6});
		else
			canvas.fill(button.area, {buttonTop, buttonBottom, 6});
		TextStyle style;
		style.color = colour ? ink : command ? commandLetters : letters;
		style.face = Face::prose;
		style.align = Align::centre;
		const Key *key = std::get_if<Key>(&button.action);
		const bool small = !key || (*key >= Key::pageup && *key <= Key::end);
		style.bold = !small;
		style.rowHeight = small ? 16 : 20;
		canvas.text(button.area, button.label, style);
	}
}

const StripButton *stripButtonAt(int x, int y)
{
	for (const StripButton &button : buttons)
		if (x >= button.area.x && x < button.area.right() && y >= button.area.y && y < button.area.bottom())
			return &button;
	return nullptr;
}

} // namespace desk

#include "desk.h"
#include "state.h"

#include <algorithm>

namespace desk
{

namespace
{

std::vector<Color> &palette()
{
	static std::vector<Color> colors;
	return colors;
}

void paintWidget(eWidget &widget, int x, int y, Canvas &canvas)
{
	const State &state = State::of(widget);
	gPainter painter(canvas, x, y);
	State::draw(widget, painter, eRect(0, 0, state.width, state.height));
	const eRect &client = widget.getClientRect();
	if (state.children.empty())
		return;
	canvas.pushClip(painter.onScreen(client));
	for (eWidget *child : state.children) {
		const State &below = State::of(*child);
		if (!below.visible)
			continue;
		const int left = x + client.left + below.x;
		const int top = y + client.top + below.y;
		canvas.pushClip({left, top, below.width, below.height});
		paintWidget(*child, left, top, canvas);
		canvas.popClip();
	}
	canvas.popClip();
}

} // namespace

void Desk::paint(Canvas &canvas) const
{
	canvas.fill({0, 0, screenWidth, screenHeight}, activeSkin.backdrop);
	for (eWidget *window : openWindows.visible())
		paintWidget(*window, State::of(*window).x, State::of(*window).y, canvas);
}

} // namespace desk

gColor gPainter::index(desk::Color color)
{
	std::vector<desk::Color> &colors = desk::palette();
	const auto place = std::find(colors.begin(), colors.end(), color);
	const auto index = place - colors.begin();
	if (place == colors.end())
		colors.push_back(color);
	return {static_cast<int>(index)};
}

desk::Color gPainter::color(gColor index)
{
	const std::vector<desk::Color> &colors = desk::palette();
	const size_t i = static_cast<size_t>(index.color);
	return i < colors.size() ? colors[i] : desk::Color{};
}

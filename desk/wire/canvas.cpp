#include "canvas.h"

#include <algorithm>

namespace desk
{

Rect Rect::united(const Rect &other) const
{
	if (empty())
		return other;
	if (other.empty())
		return *this;
	const int left = std::min(x, other.x);
	const int top = std::min(y, other.y);
	return {left, top, std::max(right(), other.right()) - left, std::max(bottom(), other.bottom()) - top};
}

std::array<Rect, 4> Rect::around(const Rect &hole) const
{
	if (hole.empty())
		return {*this};
	return {Rect{x, y, hole.x - x, h},
	        {hole.right(), y, right() - hole.right(), h},
	        {hole.x, y, hole.w, hole.y - y},
	        {hole.x, hole.bottom(), hole.w, bottom() - hole.bottom()}};
}

Rect flatPart(const Rect &outer, const Rect &client, const WindowStyle &style)
{
	return client.intersected({outer.x, outer.y + style.radius, outer.w, outer.h - 2 * style.radius});
}

} // namespace desk

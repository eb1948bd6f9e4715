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

Rect flatPart(const Rect &outer, const Rect &client, const FrameStyle &style)
{
	return client.intersected({outer.x, outer.y + style.radius, outer.w, outer.h - 2 * style.radius});
}

} // namespace desk

#include "canvas.h"

#include <algorithm>

namespace desk
{

Rect Rect::intersected(const Rect &other) const
{
	const int left = std::max(x, other.x);
	const int top = std::max(y, other.y);
	return {left, top, std::max(0, std::min(right(), other.right()) - left),
	        std::max(0, std::min(bottom(), other.bottom()) - top)};
}

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

} // namespace desk

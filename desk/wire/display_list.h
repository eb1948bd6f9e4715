#ifndef DESK_WIRE_DISPLAY_LIST_H
#define DESK_WIRE_DISPLAY_LIST_H

#include "canvas.h"

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace desk
{

/// A list of drawing operations. It can be compared with an earlier one, sent, and drawn in part.
class DisplayList : public Canvas
{
public:
	struct FillItem
	{
		Rect area;
		Fill fill;

		bool operator==(const FillItem &o) const { return area == o.area && fill == o.fill; }
	};
	struct WindowItem
	{
		Rect outer, client;
		std::string title;
		WindowStyle style;

		bool operator==(const WindowItem &o) const
		{
			return outer == o.outer && client == o.client && title == o.title && style == o.style;
		}
	};
	struct TextItem
	{
		Rect area;
		std::string line;
		TextStyle style;

		bool operator==(const TextItem &o) const
		{
			return area == o.area && line == o.line && style == o.style;
		}
	};
	struct KeyItem
	{
		Rect area;
		Key key;
		Color color;

		bool operator==(const KeyItem &o) const { return area == o.area && key == o.key && color == o.color; }
	};
	struct Item
	{
		Rect clip;
		std::variant<FillItem, WindowItem, TextItem, KeyItem> what;

		bool operator==(const Item &o) const { return clip == o.clip && what == o.what; }
		/// The pixels that it can change.
		Rect reach() const;
	};

	/// The difference between lists: new items between a common start and end.
	struct Edit
	{
		size_t front = 0, back = 0;
		std::vector<Item> items;
	};

	void pushClip(const Rect &area) override;
	void popClip() override;
	void fill(const Rect &area, const Fill &fill) override;
	void window(const Rect &outer, const Rect &client, std::string_view title,
	            const WindowStyle &style) override;
	void text(const Rect &area, std::string_view line, const TextStyle &style) override;
	void keySymbol(const Rect &area, Key key, Color color) override;

	/// The edit that turns `before` into this list.
	Edit editOf(const DisplayList &before) const;

	/// Turns this list into another. Returns the area that may change, or nullopt if the edit does not fit this list.
	std::optional<Rect> apply(Edit edit);

	/// The pixels that it can change.
	Rect reach() const;

	/// Draws the part within `area`.
	void draw(Canvas &to, const Rect &area) const;

	/// Draws the changes of the last edit on a canvas that shows the list before it.
	void drawChanges(Canvas &to) const;

private:
	using Iterator = std::vector<Item>::const_iterator;

	/// Lines of text that only moved up or down.
	struct Move
	{
		Rect area; ///< their new place; empty: none
		int down = 0;
	};

	template <class What> void add(What what);
	Move moveTo(const std::vector<Item> &made, Iterator from, Iterator to) const;

	std::vector<Rect> clips = std::vector<Rect>(1, wholeScreen); ///< innermost last
	std::vector<Item> items;
	Rect changed; ///< by the last edit
	Move moved;   ///< within `changed`
};

} // namespace desk

#endif

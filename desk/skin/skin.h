#ifndef DESK_SKIN_SKIN_H
#define DESK_SKIN_SKIN_H

#include "canvas.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace desk
{

/// How a decorated widget is drawn; one per name, such as "eLabel".
struct Decoration
{
	std::optional<Fill> background; ///< none: the parent shows through
	std::optional<Fill> focused;    ///< background while the widget has the focus; none: as without
	Color text;
	Color focusedText;
	Color current;          ///< list boxes: background of the current entry ...
	Color currentText;      ///< ... and its text
	Color currentUnfocused; ///< ... and its background while the list lacks the focus
	Color bar, barThumb;    ///< list boxes: the scroll bar
	int padding = 0;        ///< pixels between the edge and the text, left and right
};

/// The look of the screen: a palette, the windows and the decorations, read from a TOML file.
/// What the file leaves out is plain: light on dark, square, without gradients.
class Skin
{
public:
	/// Reads a skin file. Throws an Error that names the file, the place and what is wrong with it.
	static Skin load(const std::string &path);

	/// The same from a text in memory; `name` stands for the file in errors. Takes any bytes.
	static Skin parse(std::string_view text, const std::string &name);

	/// An integer of the table [values], such as "fontsize"; nothing when the skin has none.
	std::optional<int> value(const std::string &name) const;

	void setValue(const std::string &name, int value) { values[name] = value; }

	bool knows(const std::string &decoration) const { return decorations.count(decoration) > 0; }

	/// The decoration of that name; an unknown name gets the plainest one.
	const Decoration &decoration(const std::string &name) const;

	Fill backdrop; ///< behind all windows, in place of the television picture
	FrameStyle window;
	Color hintText; ///< secondary text: help of the current menu entry
	Color helpBackground;
	Color keyRed, keyGreen, keyYellow, keyBlue;

private:
	friend class SkinReader;

	std::map<std::string, int> values;
	std::map<std::string, Decoration> decorations;
	Decoration plain;
};

} // namespace desk

#endif

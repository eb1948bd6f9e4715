#ifndef DESK_SKIN_SKIN_H
#define DESK_SKIN_SKIN_H

#include "canvas.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace desk
{

/// The look of a decorated widget, by name such as "eLabel".
struct Decoration
{
	std::optional<Fill> background; ///< none: transparent
	std::optional<Fill> focused;    ///< background with the focus; none: `background`
	Color text;
	Color focusedText;
	Color current;          ///< list boxes: background of the current entry ...
	Color currentText;      ///< ... and its text
	Color currentUnfocused; ///< ... and its background without the focus
	Color bar, barThumb;    ///< list boxes: the scroll bar
	int padding = 0;        ///< pixels between the edge and the text, left and right
};

/// The look of the screen: a palette, the windows and the decorations, from a TOML file. Defaults are plain: light on
/// dark, square, no gradients.
class Skin
{
public:
	/// Reads a skin file. Throws an Error when it cannot.
	static std::string read(const std::string &path);

	/// Parses any bytes. Throws an Error with `name`, line and mistake.
	static Skin parse(std::string_view text, const std::string &name);

	/// An integer of the table [values], such as "fontsize", if the skin has it.
	std::optional<int> value(const std::string &name) const;

	void setValue(const std::string &name, int value) { values[name] = value; }

	bool knows(const std::string &decoration) const { return decorations.count(decoration) > 0; }

	/// The decoration with that name, else the plainest one.
	const Decoration &decoration(const std::string &name) const;

	Fill backdrop; ///< behind all windows, instead of the television picture
	WindowStyle window;
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

#include "skin.h"

#include "visible_text.h"

#include <toml++/toml.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>

namespace desk
{
namespace
{

constexpr size_t mostBytes = 1 << 20; // no skin is as long; a device that never ends is
constexpr int mostFontSize = 200, mostRadius = 100, mostPadding = 200;

// The first thing that is wrong with a skin, and where.
struct Mistake
{
	toml::source_index line = 0; // 0: unknown
	std::string text;
};

std::optional<Color> hexColor(std::string_view text)
{
	if (text.size() != 7 || text[0] != '#')
		return std::nullopt;
	unsigned value = 0;
	for (const char c : text.substr(1)) {
		const unsigned digit = c >= '0' && c <= '9'   ? static_cast<unsigned>(c - '0')
		                       : c >= 'a' && c <= 'f' ? static_cast<unsigned>(c - 'a' + 10)
		                       : c >= 'A' && c <= 'F' ? static_cast<unsigned>(c - 'A' + 10)
		                                              : 16;
		if (digit > 15)
			return std::nullopt;
		value = value << 4 | digit;
	}
	return Color{static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8),
	             static_cast<uint8_t>(value)};
}

std::string shortened(std::string_view text)
{
	const std::string visible = visibleText(text);
	constexpr size_t most = 60;
	if (visible.size() <= most)
		return visible;
	return visibleText(visible.substr(0, most)) + "...";
}

std::string quoted(std::string_view text)
{
	return "\"" + shortened(text) + "\"";
}

[[noreturn]] void fail(const toml::node &where, std::string text)
{
	throw Mistake{where.source().begin.line, std::move(text)};
}

const toml::table &tableOf(const toml::node &node, std::string_view name)
{
	if (const toml::table *table = node.as_table())
		return *table;
	fail(node, quoted(name) + " must be a table: write [" + shortened(name) + "]");
}

int integerOf(const toml::node &node, std::string_view name, int least, int most)
{
	const auto *integer = node.as_integer();
	if (!integer)
		fail(node, quoted(name) + " must be a whole number");
	if (integer->get() < least || integer->get() > most)
		fail(node, quoted(name) + " must be from " + std::to_string(least) + " to " + std::to_string(most) +
		               ", not " + std::to_string(integer->get()));
	return static_cast<int>(integer->get());
}

} // namespace

/// Reads the tables of one skin file; the first mistake ends it as an exception.
class SkinReader
{
public:
	SkinReader() { setPlainLook(); }

	Skin read(const toml::table &file)
	{
		// Colours may refer to the palette wherever it stands in the file.
		if (const toml::node *node = file.get("palette"))
			for (const auto &[key, value] : tableOf(*node, "palette"))
				palette[std::string(key.str())] = hexOf(value, key.str());
		for (const auto &[key, value] : file)
			section(key.str(), value);
		return std::move(skin);
	}

private:
	void setPlainLook()
	{
		constexpr Color dark = {16, 16, 16}, light = {240, 240, 240}, grey = {96, 96, 96};
		skin.backdrop = Fill::plain(dark);
		skin.window = {light, grey, grey, light, dark, 0};
		skin.hintText = light;
		skin.helpBackground = grey;
		skin.keyRed = {208, 32, 32};
		skin.keyGreen = {32, 160, 64};
		skin.keyYellow = {224, 200, 32};
		skin.keyBlue = {48, 96, 224};
		skin.plain = {{}, {}, light, light, light, dark, grey, grey, light, 0};
		for (const char *name : {"eLabel", "eButton", "eListBox"})
			skin.decorations[name] = skin.plain;
		Decoration &button = skin.decorations["eButton"];
		button.background = Fill::plain(grey);
		button.focused = Fill::plain(light);
		button.focusedText = dark;
	}

	Color hexOf(const toml::node &node, std::string_view name) const
	{
		const auto *text = node.as_string();
		const auto color = text ? hexColor(text->get()) : std::nullopt;
		if (!color)
			fail(node, "the colour " + quoted(name) + " must be written as \"#rrggbb\"");
		return *color;
	}

	Color colorOf(const toml::node &node, std::string_view name) const
	{
		const auto *text = node.as_string();
		if (!text)
			fail(node, quoted(name) + " must be a colour: a name of [palette] or \"#rrggbb\"");
		const auto named = palette.find(text->get());
		if (named != palette.end())
			return named->second;
		if (const auto color = hexColor(text->get()))
			return *color;
		fail(node, "unknown colour " + quoted(text->get()) + " for " + quoted(name) +
		               "; define it in [palette] or write \"#rrggbb\"");
	}

	// One colour, or an array of the upper and the lower one.
	Fill fillOf(const toml::node &node, std::string_view name) const
	{
		const toml::array *both = node.as_array();
		if (!both)
			return Fill::plain(colorOf(node, name));
		if (both->size() != 2)
			fail(node, quoted(name) + " must be one colour or two, the upper and the lower");
		return {colorOf(*both->get(0), name), colorOf(*both->get(1), name), 0, Emphasis::none};
	}

	void section(std::string_view name, const toml::node &node)
	{
		const toml::table &table = tableOf(node, name);
		if (name == "palette")
			return;
		for (const auto &[key, value] : table) {
			const std::string_view entry = key.str();
			bool known = true;
			if (name == "values")
				skin.values[std::string(entry)] = entry == "fontsize"
				                                      ? integerOf(value, entry, 1, mostFontSize)
				                                      : integerOf(value, entry, INT_MIN, INT_MAX);
			else if (name == "backdrop")
				known = backdrop(entry, value);
			else if (name == "window")
				known = window(entry, value);
			else if (name == "help")
				known = help(entry, value);
			else if (name == "keys")
				known = colourKey(entry, value);
			else if (name == "decoration")
				decoration(entry, tableOf(value, "decoration." + std::string(entry)));
			else
				break;
			if (!known)
				fail(value, unknown(entry, name));
		}
		if (name != "values" && name != "backdrop" && name != "window" && name != "help" && name != "keys" &&
		    name != "decoration")
			fail(node, "unknown table [" + shortened(name) +
			               "]; the tables are values, palette, backdrop, window, help, keys and decoration");
	}

	static std::string unknown(std::string_view entry, std::string_view table)
	{
		return "unknown entry " + quoted(entry) + " in [" + shortened(table) + "]; remove or correct it";
	}

	bool backdrop(std::string_view entry, const toml::node &value)
	{
		if (entry != "fill")
			return false;
		skin.backdrop = fillOf(value, entry);
		return true;
	}

	bool window(std::string_view entry, const toml::node &value)
	{
		if (entry == "border")
			skin.window.border = colorOf(value, entry);
		else if (entry == "title") {
			const Fill fill = fillOf(value, entry);
			skin.window.titleTop = fill.top;
			skin.window.titleBottom = fill.bottom;
		} else if (entry == "title_text")
			skin.window.titleText = colorOf(value, entry);
		else if (entry == "client")
			skin.window.client = colorOf(value, entry);
		else if (entry == "radius")
			skin.window.radius = integerOf(value, entry, 0, mostRadius);
		else
			return false;
		return true;
	}

	bool help(std::string_view entry, const toml::node &value)
	{
		if (entry == "text")
			skin.hintText = colorOf(value, entry);
		else if (entry == "background")
			skin.helpBackground = colorOf(value, entry);
		else
			return false;
		return true;
	}

	bool colourKey(std::string_view entry, const toml::node &value)
	{
		Color *key = entry == "red"      ? &skin.keyRed
		             : entry == "green"  ? &skin.keyGreen
		             : entry == "yellow" ? &skin.keyYellow
		             : entry == "blue"   ? &skin.keyBlue
		                                 : nullptr;
		if (key)
			*key = colorOf(value, entry);
		return key != nullptr;
	}

	void decoration(std::string_view name, const toml::table &table)
	{
		const struct
		{
			const char *entry;
			Color Decoration::*color;
		} colors[] = {
			{"text", &Decoration::text},
			{"focused_text", &Decoration::focusedText},
			{"current", &Decoration::current},
			{"current_text", &Decoration::currentText},
			{"current_unfocused", &Decoration::currentUnfocused},
			{"bar", &Decoration::bar},
			{"bar_thumb", &Decoration::barThumb},
		};
		const auto known = skin.decorations.find(std::string(name));
		Decoration look = known != skin.decorations.end() ? known->second : skin.plain;
		int radius = 0;
		for (const auto &[key, value] : table) {
			const std::string_view entry = key.str();
			bool done = true;
			if (entry == "background")
				look.background = fillOf(value, entry);
			else if (entry == "focused")
				look.focused = fillOf(value, entry);
			else if (entry == "radius")
				radius = integerOf(value, entry, 0, mostRadius);
			else if (entry == "padding")
				look.padding = integerOf(value, entry, 0, mostPadding);
			else
				done = false;
			for (const auto &color : colors)
				if (entry == color.entry) {
					look.*color.color = colorOf(value, entry);
					done = true;
				}
			if (!done)
				fail(value, unknown(entry, "decoration." + std::string(name)));
		}
		for (std::optional<Fill> *fill : {&look.background, &look.focused})
			if (*fill)
				(*fill)->radius = radius;
		skin.decorations[std::string(name)] = look;
	}

	Skin skin;
	std::map<std::string, Color> palette;
};

std::optional<Skin> Skin::parse(std::string_view text, const std::string &name, std::string &error)
{
	Mistake mistake;
	try {
		return SkinReader().read(toml::parse(text));
	} catch (const toml::parse_error &e) {
		mistake = {e.source().begin.line, std::string(e.description())};
	} catch (Mistake &found) {
		mistake = std::move(found);
	}
	// Both the name and what is quoted from the file may hold any bytes: one line it stays.
	error = visibleText("skin \"" + name + "\"" +
	                    (mistake.line ? ", line " + std::to_string(mistake.line) : std::string()) + ": " +
	                    mistake.text);
	return std::nullopt;
}

std::optional<Skin> Skin::load(const std::string &path, std::string &error)
{
	const auto failed = [&](const std::string &why) {
		error = visibleText("cannot read the skin \"" + path + "\": " + why);
		return std::nullopt;
	};
	const std::unique_ptr<FILE, int (*)(FILE *)> file(fopen(path.c_str(), "rb"), fclose);
	if (!file)
		return failed(strerror(errno));
	std::string text;
	char piece[4096];
	while (const size_t length = fread(piece, 1, sizeof piece, file.get())) {
		text.append(piece, length);
		if (text.size() > mostBytes)
			return failed("it is larger than 1 MiB, which no skin is; name a TOML file");
	}
	if (ferror(file.get()))
		return failed(errno == EISDIR ? "it is a folder; name a TOML file" : strerror(errno));
	return parse(text, path, error);
}

std::optional<int> Skin::value(const std::string &name) const
{
	const auto found = values.find(name);
	return found == values.end() ? std::nullopt : std::optional<int>(found->second);
}

const Decoration &Skin::decoration(const std::string &name) const
{
	const auto found = decorations.find(name);
	return found == decorations.end() ? plain : found->second;
}

} // namespace desk

#include "skin.h"

#include "desk_error.h"
#include "visible_text.h"

#include <toml++/toml.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <variant>
#include <vector>

#include <sys/stat.h>

namespace desk
{
namespace
{

constexpr size_t mostBytes = 1 << 20; // longer than any skin; a device may never end
constexpr int mostDots = 4000;        // each may nest a table, and the parser is recursive
constexpr int mostFontSize = 200, mostRadius = 100, mostPadding = 200;

std::optional<Color> hexColor(std::string_view text)
{
	if (text.size() != 7 || text[0] != '#')
		return std::nullopt;
	unsigned value = 0;
	const char *const end = text.data() + text.size();
	if (const auto read = std::from_chars(text.data() + 1, end, value, 16);
	    read.ec != std::errc() || read.ptr != end)
		return std::nullopt;
	return Color{static_cast<uint8_t>(value >> 16), static_cast<uint8_t>(value >> 8),
	             static_cast<uint8_t>(value)};
}

std::string shortened(std::string_view text)
{
	std::string visible = visibleText(text);
	constexpr size_t most = 60;
	if (visible.size() <= most)
		return visible;
	return visibleText(visible.substr(0, most)) + "...";
}

std::string quoted(std::string_view text)
{
	return '\'' + shortened(text) + '\'';
}

/// The error text without the skin's name.
std::string mistake(const toml::source_region &where, std::string_view text)
{
	const toml::source_index line = where.begin.line; // 0: unknown
	return (line ? ", line " + std::to_string(line) : std::string()) + ": " + std::string(text);
}

[[noreturn]] void fail(const toml::node &where, const std::string &text)
{
	throw Error(mistake(where.source(), text));
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

/// The possible targets of a table's entry.
struct Number
{
	int *value;
	int least, most;
};
struct Gradient
{
	Color *top, *bottom;
};
struct Entry
{
	std::string_view name;
	std::variant<Color *, Gradient, std::optional<Fill> *, Number> target;
};
using Entries = std::vector<Entry>;

} // namespace

/// Reads a skin file's tables. Throws an Error without the file's name at the first mistake.
class SkinReader
{
public:
	Skin read(const toml::table &file)
	{
		setPlainLook();
		// First, because colours may refer to a palette further below.
		if (const toml::node *node = file.get("palette"))
			for (const auto &[key, value] : tableOf(*node, "palette"))
				palette[std::string(key.str())] = hexOf(value, key.str());
		for (const auto &[key, node] : file)
			readTable(key.str(), node);
		return std::move(skin);
	}

private:
	void setPlainLook()
	{
		constexpr Color dark = {16, 16, 16}, light = {240, 240, 240}, grey = {96, 96, 96};
		skin.backdrop = Fill::plain(dark, 0, Part::backdrop);
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

	void readTable(std::string_view name, const toml::node &node)
	{
		const std::map<std::string_view, Entries> fixed = {
			{"palette", {}},
			{"backdrop", {{"fill", Gradient{&skin.backdrop.top, &skin.backdrop.bottom}}}},
			{"window",
		     {{"border", &skin.window.border},
		      {"title", Gradient{&skin.window.titleTop, &skin.window.titleBottom}},
		      {"title_text", &skin.window.titleText},
		      {"client", &skin.window.client},
		      {"radius", Number{&skin.window.radius, 0, mostRadius}}}},
			{"help", {{"text", &skin.hintText}, {"background", &skin.helpBackground}}},
			{"keys",
		     {{"red", &skin.keyRed},
		      {"green", &skin.keyGreen},
		      {"yellow", &skin.keyYellow},
		      {"blue", &skin.keyBlue}}},
		};
		const toml::table &table = tableOf(node, name);
		if (name == "palette")
			return; // read before
		if (name == "values")
			for (const auto &[key, value] : table)
				readValue(key.str(), value);
		else if (name == "decoration")
			for (const auto &[key, value] : table)
				readDecoration(key.str(), value);
		else if (const auto found = fixed.find(name); found != fixed.end())
			readEntries(table, name, found->second);
		else
			fail(node, "unknown table [" + shortened(name) +
			               "]; the tables are values, palette, backdrop, window, help, keys and decoration");
	}

	void readValue(std::string_view name, const toml::node &node)
	{
		int &value = skin.values[std::string(name)];
		value = name == "fontsize" ? integerOf(node, name, 1, mostFontSize)
		                           : integerOf(node, name, INT_MIN, INT_MAX);
	}

	void readDecoration(std::string_view name, const toml::node &node)
	{
		const std::string table = "decoration." + std::string(name);
		const auto known = skin.decorations.find(std::string(name));
		Decoration decoration = known != skin.decorations.end() ? known->second : skin.plain;
		int radius = 0;
		readEntries(tableOf(node, table), table,
		            {{"background", &decoration.background},
		             {"focused", &decoration.focused},
		             {"radius", Number{&radius, 0, mostRadius}},
		             {"padding", Number{&decoration.padding, 0, mostPadding}},
		             {"text", &decoration.text},
		             {"focused_text", &decoration.focusedText},
		             {"current", &decoration.current},
		             {"current_text", &decoration.currentText},
		             {"current_unfocused", &decoration.currentUnfocused},
		             {"bar", &decoration.bar},
		             {"bar_thumb", &decoration.barThumb}});
		for (std::optional<Fill> *fill : {&decoration.background, &decoration.focused})
			if (*fill)
				(*fill)->radius = radius;
		skin.decorations[std::string(name)] = decoration;
	}

	void readEntries(const toml::table &table, std::string_view name, const Entries &entries)
	{
		for (const auto &[key, node] : table) {
			const std::string_view given = key.str();
			const toml::node &value = node; // Clang 14 cannot capture structured bindings
			const auto entry = std::find_if(entries.begin(), entries.end(),
			                                [&](const Entry &known) { return known.name == given; });
			if (entry == entries.end())
				fail(value, "unknown entry " + quoted(given) + " in [" + shortened(name) +
				                "]; remove or correct it");
			std::visit([&](auto target) { set(target, value, entry->name); }, entry->target);
		}
	}

	void set(Color *color, const toml::node &node, std::string_view name) const
	{
		*color = colorOf(node, name);
	}

	/// One colour, or an array of two: top and bottom.
	void set(Gradient gradient, const toml::node &node, std::string_view name) const
	{
		const toml::array *both = node.as_array();
		if (both && both->size() != 2)
			fail(node, quoted(name) + " must be one colour or two, the upper and the lower");
		*gradient.top = colorOf(both ? *both->get(0) : node, name);
		*gradient.bottom = colorOf(both ? *both->get(1) : node, name);
	}

	void set(std::optional<Fill> *fill, const toml::node &node, std::string_view name) const
	{
		fill->emplace();
		set(Gradient{&(*fill)->top, &(*fill)->bottom}, node, name);
	}

	void set(const Number &number, const toml::node &node, std::string_view name) const
	{
		*number.value = integerOf(node, name, number.least, number.most);
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

	Skin skin;
	std::map<std::string, Color> palette;
};

Skin Skin::parse(std::string_view text, const std::string &name)
{
	std::string wrong;
	try {
		if (std::count(text.begin(), text.end(), '.') <= mostDots)
			return SkinReader().read(toml::parse(text));
		wrong = ": it has more than " + std::to_string(mostDots) + " dots; no skin is as deep";
	} catch (const toml::parse_error &error) {
		wrong = mistake(error.source(), error.description());
	} catch (const Error &error) {
		wrong = error.line;
	}
	// The name and quotations may contain any bytes; keeps the error one line.
	throw Error(visibleText("skin '" + name + "'" + wrong));
}

std::string Skin::read(const std::string &path)
{
	const auto failure = [&](const std::string &why) {
		return Error(visibleText("cannot read the skin '" + path + "': " + why));
	};
	if (struct stat status; stat(path.c_str(), &status) == 0 && S_ISFIFO(status.st_mode))
		throw failure("it is a pipe; name a TOML file");
	const std::unique_ptr<FILE, int (*)(FILE *)> file(fopen(path.c_str(), "rb"), fclose);
	if (!file)
		throw failure(strerror(errno));
	std::string text;
	char piece[4096];
	while (const size_t length = fread(piece, 1, sizeof piece, file.get())) {
		text.append(piece, length);
		if (text.size() > mostBytes)
			throw failure("it is larger than 1 MiB, which no skin is; name a TOML file");
	}
	if (ferror(file.get()))
		throw failure(errno == EISDIR ? "it is a folder; name a TOML file" : strerror(errno));
	return text;
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

#include "skin.h"

#include "error_of.h"
#include "temp_folder.h"

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <gtest/gtest.h>
#include <random>
#include <unistd.h>

namespace skin_test
{

using namespace desk;
using namespace std::string_literals;

const std::string standard = DESK_SKINS "/default.toml";

Skin skinOf(const std::string &text)
{
	return Skin::parse(text, "test.toml");
}

std::string mistakeIn(const std::string &text)
{
	return support::errorOf([&] { skinOf(text); });
}

std::string readMistake(const std::string &path)
{
	return support::errorOf([&] { Skin::read(path); });
}

// Relative luminance as in the contrast rules for web pages, where 4.5 : 1 is legible.
double luminance(Color c)
{
	const auto linear = [](uint8_t value) {
		const double v = value / 255.0;
		return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
	};
	return 0.2126 * linear(c.r) + 0.7152 * linear(c.g) + 0.0722 * linear(c.b);
}

double contrast(Color a, Color b)
{
	const double x = luminance(a) + 0.05, y = luminance(b) + 0.05;
	return x > y ? x / y : y / x;
}

TEST(StandardSkin, has_what_the_plugin_asks_for)
{
	const Skin skin = skinOf(Skin::read(standard));
	EXPECT_EQ(skin.value("fontsize"), 20);
	EXPECT_EQ(skin.value("fontSize"), std::nullopt);
	EXPECT_TRUE(skin.decoration("eButton").background);
	EXPECT_TRUE(skin.decoration("eButton").focused);
	EXPECT_FALSE(skin.decoration("eLabel").background);
	EXPECT_GT(skin.decoration("eListBox").padding, 0);
}

TEST(StandardSkin, is_legible_from_a_sofa)
{
	const Skin skin = skinOf(support::readFile(standard));
	const Color back = skin.window.client;
	const Decoration &list = skin.decoration("eListBox"), &button = skin.decoration("eButton");
	EXPECT_GT(contrast(list.text, back), 7);
	EXPECT_GT(contrast(skin.decoration("eLabel").text, back), 7);
	EXPECT_GT(contrast(list.currentText, list.current), 7);
	EXPECT_GT(contrast(list.currentText, list.currentUnfocused), 4.5);
	EXPECT_GT(contrast(skin.window.titleText, skin.window.titleTop), 4.5);
	EXPECT_GT(contrast(skin.hintText, skin.helpBackground), 7);
	EXPECT_GT(contrast(button.text, button.background->top), 4.5);
	EXPECT_GT(contrast(button.focusedText, button.focused->bottom), 7);
	// Current and focused entries differ from the others by brightness alone.
	EXPECT_GT(contrast(list.current, back), 7);
	EXPECT_GT(contrast(button.focused->bottom, button.background->top), 4.5);
	EXPECT_GT(contrast(list.current, list.currentUnfocused), 1.5);
}

TEST(Skins, may_leave_out_the_font_size)
{
	EXPECT_EQ(skinOf("[values]\n").value("fontsize"), std::nullopt);
	EXPECT_EQ(skinOf("").value("fontsize"), std::nullopt);
	EXPECT_EQ(skinOf("[values]\nother = -7\n").value("other"), -7);
}

TEST(Skins, that_leave_out_everything_are_still_legible)
{
	const Skin skin = skinOf("");
	EXPECT_GT(contrast(skin.decoration("eListBox").text, skin.window.client), 7);
	EXPECT_GT(contrast(skin.decoration("eListBox").currentText, skin.decoration("eListBox").current), 7);
	EXPECT_GT(contrast(skin.decoration("eButton").focusedText, skin.decoration("eButton").focused->top), 7);
	EXPECT_GT(contrast(skin.decoration("unheard of").text, skin.window.client), 7);
}

TEST(Skins, take_colours_from_the_palette_wherever_it_stands)
{
	const Skin skin = skinOf("[window]\nclient = 'deep'\nborder = \"#A1b2C3\"\ntitle = ['deep', '#010203']\n"
	                         "title_text = 'snow'\nradius = 9\n"
	                         "[decoration.eButton]\nfocused = 'snow'\nradius = 5\npadding = 3\n"
	                         "[keys]\nblue = 'deep'\n[help]\ntext = 'snow'\nbackground = 'deep'\n"
	                         "[backdrop]\nfill = ['snow', 'deep']\n"
	                         "[palette]\ndeep = '#102030'\nsnow = '#ffffff'\n");
	const Color deep = {16, 32, 48}, snow = {255, 255, 255};
	EXPECT_EQ(skin.window.client, deep);
	EXPECT_EQ(skin.window.border, (Color{0xA1, 0xB2, 0xC3}));
	EXPECT_EQ(skin.window.titleTop, deep);
	EXPECT_EQ(skin.window.titleBottom, (Color{1, 2, 3}));
	EXPECT_EQ(skin.window.titleText, snow);
	EXPECT_EQ(skin.window.radius, 9);
	EXPECT_EQ(skin.decoration("eButton").focused->top, snow);
	EXPECT_EQ(skin.decoration("eButton").focused->bottom, snow);
	EXPECT_EQ(skin.decoration("eButton").focused->radius, 5);
	EXPECT_EQ(skin.decoration("eButton").padding, 3);
	EXPECT_EQ(skin.keyBlue, deep);
	EXPECT_EQ(skin.hintText, snow);
	EXPECT_EQ(skin.helpBackground, deep);
	EXPECT_EQ(skin.backdrop.top, snow);
	EXPECT_EQ(skin.backdrop.bottom, deep);
}

TEST(Skins, tell_what_is_wrong_and_where)
{
	const struct
	{
		const char *text, *error;
	} mistakes[] = {
		{"[window]\nclient = 'night'\n",
	     "skin 'test.toml', line 2: unknown colour 'night' for 'client'; define it in [palette] "
	     "or write \"#rrggbb\""},
		{"[window]\nclient = '#12345'\n",
	     "skin 'test.toml', line 2: unknown colour '#12345' for 'client'; define it in [palette] "
	     "or write \"#rrggbb\""},
		{"[window]\n\nclient = 7\n",
	     "skin 'test.toml', line 3: 'client' must be a colour: a name of [palette] or \"#rrggbb\""},
		{"[palette]\na = '#12345g'\n",
	     "skin 'test.toml', line 2: the colour 'a' must be written as \"#rrggbb\""},
		{"[palette]\na = 3\n", "skin 'test.toml', line 2: the colour 'a' must be written as \"#rrggbb\""},
		{"[values]\nfontsize = 0\n", "skin 'test.toml', line 2: 'fontsize' must be from 1 to 200, not 0"},
		{"[values]\nfontsize = 201\n", "skin 'test.toml', line 2: 'fontsize' must be from 1 to 200, not 201"},
		{"[values]\nfontsize = 20.5\n", "skin 'test.toml', line 2: 'fontsize' must be a whole number"},
		{"[values]\nfontsize = '20'\n", "skin 'test.toml', line 2: 'fontsize' must be a whole number"},
		{"[values]\nother = 3000000000\n",
	     "skin 'test.toml', line 2: 'other' must be from -2147483648 to 2147483647, not 3000000000"},
		{"[window]\nradius = -1\n", "skin 'test.toml', line 2: 'radius' must be from 0 to 100, not -1"},
		{"[decoration.eButton]\nradius = 101\n",
	     "skin 'test.toml', line 2: 'radius' must be from 0 to 100, not 101"},
		{"[decoration.eButton]\npadding = 201\n",
	     "skin 'test.toml', line 2: 'padding' must be from 0 to 200, not 201"},
		{"[backdrop]\nfill = ['#000000']\n",
	     "skin 'test.toml', line 2: 'fill' must be one colour or two, the upper and the lower"},
		{"[window]\nclent = '#000000'\n",
	     "skin 'test.toml', line 2: unknown entry 'clent' in [window]; remove or correct it"},
		{"[decoration.eLabel]\nfont = 1\n",
	     "skin 'test.toml', line 2: unknown entry 'font' in [decoration.eLabel]; remove or correct it"},
		{"[windows]\n",
	     "skin 'test.toml', line 1: unknown table [windows]; the tables are values, palette, backdrop, "
	     "window, help, keys and decoration"},
		{"values = 3\n", "skin 'test.toml', line 1: 'values' must be a table: write [values]"},
		{"palette = 3\n", "skin 'test.toml', line 1: 'palette' must be a table: write [palette]"},
		{"[decoration]\neLabel = 3\n",
	     "skin 'test.toml', line 2: 'decoration.eLabel' must be a table: write [decoration.eLabel]"},
	};
	for (const auto &mistake : mistakes)
		EXPECT_EQ(mistakeIn(mistake.text), mistake.error);
}

TEST(Skins, tell_the_line_of_a_syntax_error)
{
	EXPECT_EQ(mistakeIn("[values]\nfontsize 20\n").find("skin 'test.toml', line 2: "), 0u);
	EXPECT_EQ(mistakeIn("[values\n").find("skin 'test.toml', line 1: "), 0u);
	EXPECT_EQ(mistakeIn("a = 1\na = 2\n").find("skin 'test.toml', line 2: "), 0u);
}

TEST(SkinFiles, that_cannot_be_read_are_named)
{
	const support::TempFolder folder;
	EXPECT_EQ(readMistake(folder.path() + "/none.toml"),
	          "cannot read the skin '" + folder.path() + "/none.toml': No such file or directory");
	EXPECT_EQ(readMistake(folder.path()),
	          "cannot read the skin '" + folder.path() + "': it is a folder; name a TOML file");
	EXPECT_EQ(readMistake("/dev/zero"),
	          "cannot read the skin '/dev/zero': it is larger than 1 MiB, which no skin is; "
	          "name a TOML file");
	EXPECT_EQ(readMistake("/proc/self/mem").find("cannot read the skin '/proc/self/mem': "), 0u);
	EXPECT_EQ(readMistake(standard + "/x").find("cannot read the skin "), 0u);
	if (geteuid() != 0) { // the superuser reads everything
		const std::string closed = folder.write("closed.toml", "");
		std::filesystem::permissions(closed, std::filesystem::perms::none);
		EXPECT_EQ(readMistake(closed), "cannot read the skin '" + closed + "': Permission denied");
	}
}

TEST(SkinFiles, with_nasty_names_stay_one_line_in_errors)
{
	EXPECT_EQ(readMistake("no\nsuch\x1b[2Jfile"),
	          "cannot read the skin 'no\xE2\x90\x8Asuch\xE2\x90\x9B[2Jfile': No such file or directory");
}

TEST(Skins, never_crash_on_any_bytes)
{
	const std::string good = support::readFile(standard);
	std::mt19937 random(3);
	std::uniform_int_distribution<int> byte(0, 255), count(1, 8), kind(0, 2);
	std::uniform_int_distribution<size_t> place(0, good.size() - 1);
	for (int i = 0; i < 3000; ++i) {
		std::string text = good;
		for (int n = count(random); n > 0; --n) {
			const size_t at = std::min(place(random), text.size() - 1);
			switch (kind(random)) {
			case 0:
				text[at] = static_cast<char>(byte(random));
				break;
			case 1:
				text.erase(at, static_cast<size_t>(byte(random)) % (text.size() - 1));
				break;
			default:
				text.insert(at, good.substr(place(random), static_cast<size_t>(byte(random))));
				break;
			}
			if (text.empty())
				text = "x";
		}
		try {
			skinOf(text);
		} catch (const Error &error) {
			ASSERT_FALSE(error.line.empty());
			ASSERT_EQ(error.line.find('\n'), std::string::npos) << error.line;
			ASSERT_LT(error.line.size(), 1000u);
		}
	}
	mistakeIn(std::string(100000, '['));
	mistakeIn("a = " + std::string(100000, '['));
	mistakeIn("[" + std::string(100000, 'a') + "]");
	mistakeIn("\0\0\0"s);
}

TEST(Skins, that_nest_too_deep_are_refused)
{
	std::string key = "a";
	for (int i = 0; i < 40000; ++i)
		key += ".a";
	for (const std::string &text :
	     {key + " = 1\n", "[" + key + "]\n", "[window]\nclient = {" + key + " = 1}\n"})
		EXPECT_EQ(mistakeIn(text), "skin 'test.toml': it has more than 4000 dots; no skin is as deep");
	key.resize(2 * 3990);
	mistakeIn("[" + key + "a]\n");
	skinOf("# " + std::string(3000, '.') + "\n");
}

} // namespace skin_test

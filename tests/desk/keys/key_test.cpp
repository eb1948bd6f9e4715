#include "key.h"

#include "error_of.h"

#include <gtest/gtest.h>
#include <set>

namespace key_test
{

using namespace desk;
using Keys = std::vector<Key>;

std::string mistakeIn(std::string_view script)
{
	return support::errorOf([&] { parseKeyScript(script); });
}

TEST(RemoteKeys, have_the_names_that_scripts_use)
{
	const char *const names[] = {"up", "down", "left", "right", "pageup", "pagedown", "home", "end",
	                             "ok", "exit", "red",  "green", "yellow", "blue",     "0",    "1",
	                             "2",  "3",    "4",    "5",     "6",      "7",        "8",    "9"};
	int next = 0;
	for (const char *name : names) {
		const auto key = static_cast<Key>(next++);
		EXPECT_STREQ(keyName(key), name);
		EXPECT_EQ(keyNamed(name), key);
	}
	EXPECT_EQ(static_cast<Key>(next - 1), Key::digit9);
}

TEST(RemoteKeys, have_no_other_names)
{
	for (const char *name :
	     {"", "OK", "Ok", "ok ", " ok", "okay", "o", "10", "-1", "page up", "digit1", "menu"})
		EXPECT_FALSE(keyNamed(name)) << name;
	EXPECT_FALSE(keyNamed(std::string_view("ok\0", 3)));
}

TEST(KeyScripts, are_names_between_any_white_space)
{
	EXPECT_EQ(parseKeyScript("down ok exit"), (Keys{Key::down, Key::ok, Key::exit}));
	EXPECT_EQ(parseKeyScript("  down\n\tok \r\n exit\v\f"), (Keys{Key::down, Key::ok, Key::exit}));
	EXPECT_EQ(parseKeyScript("7"), Keys{Key::digit7});
}

TEST(KeyScripts, may_be_empty)
{
	EXPECT_EQ(parseKeyScript(""), Keys{});
	EXPECT_EQ(parseKeyScript(" \n\t "), Keys{});
}

TEST(KeyScripts, may_be_long)
{
	std::string script;
	for (int i = 0; i < 100000; ++i)
		script += "down ";
	EXPECT_EQ(parseKeyScript(script).size(), 100000u);
}

TEST(KeyScripts, name_the_unknown_key_and_list_the_known_ones)
{
	EXPECT_EQ(mistakeIn("down okay exit"),
	          "unknown key 'okay'; the keys are up down left right pageup pagedown home end ok exit "
	          "red green yellow blue 0 1 2 3 4 5 6 7 8 9");
	EXPECT_EQ(mistakeIn("down,ok").substr(0, 21), "unknown key 'down,ok'");
}

TEST(KeyScripts, quote_nasty_bytes_harmlessly_and_briefly)
{
	using namespace std::string_view_literals;
	EXPECT_EQ(mistakeIn("\x1b[2J\x07\xff\0x"sv).substr(0, 24), "unknown key '?[2J???x'; ");
	EXPECT_LT(mistakeIn(std::string(100000, 'x')).size(), 200u);
}

} // namespace key_test

// Message catalogues: msgfmt's are read, any other file gives one line with the reason.

#include "catalogue.h"

#include "error_of.h"
#include "plural_rule.h"
#include "support.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>

using desk::Catalogue;
using desk::pluralForm;
using support::TempFolder;

namespace catalogue_test
{

constexpr const char *header = "msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n";

/// The catalogue that msgfmt makes of these messages.
std::string made(const std::string &messages, const support::Command &options = {})
{
	TempFolder place;
	support::Command command = {"msgfmt", "-o", place / "out.mo", place.write("in.po", messages)};
	command.insert(command.end(), options.begin(), options.end());
	const support::Outcome outcome = support::run(command);
	EXPECT_EQ(outcome.status, 0) << outcome.err;
	return support::readFile(place / "out.mo");
}

std::string german(const support::Command &options = {})
{
	return made(support::readFile(support::sourcePath("po/de.po")), options);
}

Catalogue parsed(const std::string &bytes)
{
	return Catalogue::parse(bytes, "some.mo");
}

void expectClear(const std::string &error, const std::string &name)
{
	EXPECT_NE(error.find("the message catalogue '" + name + "'"), std::string::npos) << error;
	EXPECT_EQ(error.find('\n'), std::string::npos) << error;
}

/// The error message for these bytes.
std::string refusal(const std::string &bytes)
{
	const std::string error = support::errorOf([&] { parsed(bytes); });
	expectClear(error, "some.mo");
	return error;
}

void expectRefused(const std::string &bytes, const std::string &because)
{
	const std::string why = refusal(bytes);
	EXPECT_NE(why.find(because), std::string::npos) << why;
}

/// Four bytes, little-endian.
std::string word(unsigned number)
{
	std::string bytes;
	for (int i = 0; i < 4; ++i, number >>= 8)
		bytes += static_cast<char>(number & 0xff);
	return bytes;
}

/// A catalogue of `count` equal texts of `length` bytes at offset `at`; `texts` follow the tables.
std::string byHand(unsigned count, unsigned length, unsigned at, const std::string &texts)
{
	std::string bytes = word(0x950412de) + word(0) + word(count) + word(28) + word(28) + word(0) + word(0);
	for (unsigned i = 0; i < count; ++i)
		bytes += word(length) + word(at);
	return bytes + texts;
}

TEST(Catalogue, gives_the_translation_or_nothing)
{
	for (const char *order : {"little", "big"})
		for (const char *table : {"--no-hash", "--alignment=8"}) {
			const Catalogue catalogue = parsed(german({"--endianness=" + std::string(order), table}));
			EXPECT_STREQ(catalogue.find("process info"), "Prozess-Info");
			EXPECT_STREQ(catalogue.find("Warning"), "Warnung");
			EXPECT_EQ(std::string(catalogue.find("")).rfind("Project-Id-Version:", 0), 0u) << "its header";
			EXPECT_EQ(catalogue.find("Prozess-Info"), nullptr);
			EXPECT_EQ(catalogue.find("process inf"), nullptr);
		}
}

TEST(Catalogue, needs_no_order_and_no_header)
{
	// Ids: "b", "a". Texts: "2", "1".
	const std::string bytes = word(0x950412de) + word(0x10000) + word(2) + word(28) + word(44) + word(0) +
	                          word(60) + word(1) + word(60) + word(1) + word(62) + word(1) + word(64) +
	                          word(1) + word(66) + std::string("b\0a\0002\0001\0", 8);
	const Catalogue catalogue = parsed(bytes);
	EXPECT_STREQ(catalogue.find("a"), "1");
	EXPECT_STREQ(catalogue.find("b"), "2");
	EXPECT_EQ(catalogue.find(""), nullptr);
	EXPECT_NO_THROW(parsed(byHand(0, 0, 0, ""))) << "one that translates nothing";
}

TEST(Catalogue, gives_the_form_that_a_number_takes)
{
	const Catalogue catalogue =
		parsed(made("msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n"
	                "\"Plural-Forms: nplurals=3; plural=(n%10==1 && n%100!=11 ? 0 : "
	                "n%10>=2 && n%10<=4 && (n%100<10 || n%100>=20) ? 1 : 2);\\n\"\n"
	                "msgid \"%d file\"\nmsgid_plural \"%d files\"\nmsgstr[0] \"%d plik\"\n"
	                "msgstr[1] \"%d pliki\"\nmsgstr[2] \"no number\"\n"
	                "msgctxt \"menu\"\nmsgid \"%d row\"\nmsgstr \"%d rząd\"\n"));
	EXPECT_STREQ(catalogue.find("%d file", 1), "%d plik");
	EXPECT_STREQ(catalogue.find("%d file", 23), "%d pliki");
	EXPECT_STREQ(catalogue.find("%d file", 12), "no number") << "a form may leave a value out";
	EXPECT_STREQ(catalogue.find("%d file"), "%d plik");
	EXPECT_STREQ(catalogue.find("menu\4%d row", 5), "%d rząd") << "it has one form only";
	EXPECT_EQ(catalogue.find("%d files", 2), nullptr);
}

TEST(Catalogue, counts_as_english_does_without_a_rule)
{
	for (const char *rule : {"", "\"Plural-Forms: nplurals=2; plural=n n;\\n\"\n"}) {
		std::string messages =
			std::string(header) + "%s" +
			"msgid \"one\"\nmsgid_plural \"more\"\nmsgstr[0] \"eins\"\nmsgstr[1] \"mehr\"\n";
		messages.replace(messages.find("%s"), 2, rule);
		const Catalogue catalogue = parsed(made(messages));
		EXPECT_STREQ(catalogue.find("one", 0), "mehr");
		EXPECT_STREQ(catalogue.find("one", 1), "eins");
		EXPECT_STREQ(catalogue.find("one", 2), "mehr");
	}
}

TEST(Catalogue, is_refused_when_it_is_cut_off_anywhere)
{
	const std::string whole = german();
	for (size_t size = 0; size < whole.size(); ++size)
		EXPECT_NE(refusal(whole.substr(0, size)), "") << size;
}

TEST(Catalogue, harms_nobody_whatever_bytes_it_has)
{
	const std::string little = german(), big = german({"--endianness=big"});
	const support::Lines ids = {"", "Kill %s pid?", "process info", "Yes", "no such"};
	std::mt19937 random(1);
	int refused = 0;
	for (int i = 0; i < 4000; ++i) {
		std::string bytes = i % 2 ? little : big;
		// Half of the changes hit the tables, where they matter most.
		const size_t range = i % 4 < 2 ? bytes.size() : std::min<size_t>(bytes.size(), 320);
		for (unsigned changes = 1 + random() % 4; changes > 0; --changes)
			bytes[random() % range] = static_cast<char>(random());
		std::optional<Catalogue> catalogue;
		try {
			catalogue = parsed(bytes);
		} catch (const desk::Error &error) {
			++refused;
			expectClear(error.line, "some.mo");
			continue;
		}
		for (const std::string &id : ids)
			for (const char *text : {catalogue->find(id.c_str()), catalogue->find(id.c_str(), random())})
				if (text) {
					EXPECT_LT(strlen(text), bytes.size());
				}
		if (const char *format = catalogue->find("Kill %s pid?")) {
			char question[100];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // the format may have changed
			snprintf(question, sizeof question, format, "123");
#pragma GCC diagnostic pop
		}
	}
	EXPECT_GT(refused, 1000);
	EXPECT_LT(refused, 3500) << "where a letter changed, it can be used";
}

TEST(Catalogue, has_all_its_texts_in_its_file)
{
	const std::string text("text\0", 5);
	EXPECT_NO_THROW(parsed(byHand(1, 4, 36, text)));
	expectRefused(byHand(1, 4, 37, text), "text number 1 is damaged");
	expectRefused(byHand(1, 3, 36, text), "text number 1 is damaged");
	expectRefused(byHand(1, 5, 36, text), "text number 1 is damaged");
	expectRefused(byHand(1, 0xffffffff, 36, text), "text number 1 is damaged");
	expectRefused(byHand(1, 4, 0xffffffff, text), "text number 1 is damaged");
	expectRefused(byHand(1, 37, 0xffffffff, text), "text number 1 is damaged");
	for (const size_t place : {8u, 12u, 16u}) // offsets of the number of texts and of both tables
		for (const unsigned number : {41u, 0x20000001u, 0x80000000u, 0xffffffffu})
			expectRefused(byHand(1, 4, 36, text).replace(place, 4, word(number)), "it is cut off");
}

TEST(Catalogue, keeps_to_its_bounds)
{
	expectRefused(byHand(1, 4, 36, std::string(16 << 20, '\0')), "16 MiB");
	// A million references to one long text: checking each would take time beyond the file's size.
	expectRefused(byHand(1000000, 1000000, 8000028, std::string(1000000, 'x') + '\0'), "damaged");
	std::string values;
	for (int i = 0; i < 1000000; ++i)
		values += "%d";
	EXPECT_NO_THROW(parsed(byHand(1, static_cast<unsigned>(values.size()), 36, values + '\0')));
}

TEST(Catalogue, is_of_a_kind_that_is_known)
{
	expectRefused("", "it is none; make it with msgfmt");
	expectRefused("msgid \"\"\nmsgstr \"\"\n", "it is none; make it with msgfmt");
	expectRefused(german().replace(6, 1, "\2"), "a kind that is not known");
	const std::string message = std::string(header) + "#, c-format\nmsgid \"%<PRIu64> files\"\nmsgstr \"";
	expectRefused(made(message + "%<PRIu64> Dateien\"\n"), "depend on the processor");
}

TEST(Catalogue, is_in_utf_8)
{
	const auto withCharset = [](const std::string &charset) {
		return made("msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=" + charset +
		            "\\n\"\nmsgid \"a\"\nmsgstr \"b\"\n");
	};
	for (const char *same : {"utf-8", "UTF-8", "US-ASCII"})
		EXPECT_NO_THROW(parsed(withCharset(same))) << same;
	std::string latin = withCharset("UTF-8");
	latin.replace(latin.find("UTF-8"), 5, "CP850");
	expectRefused(latin, "its character set is CP850; make it UTF-8");
	EXPECT_NO_THROW(parsed(made("msgid \"a\"\nmsgstr \"b\"\n"))) << "none is said";
}

TEST(Catalogue, formats_no_value_that_the_text_lacks)
{
	const auto with = [](const std::string &id, const std::string &translation) {
		return made(header + ("msgid \"" + id) + "\"\nmsgstr \"" + translation + "\"\n");
	};
	const std::pair<const char *, const char *> fitting[] = {{"%s of %d", "%2$d %1$s"},
	                                                         {"%s of %d", "only %s"},
	                                                         {"%5.2f%%", "%f %%"},
	                                                         {"%d rows", "%i %% d"},
	                                                         {"%ld", "%-08ld"},
	                                                         {"%*d", "%*d"},
	                                                         {"50 % more", "50% mehr"},
	                                                         {"100% sure", "%n %s %d"},
	                                                         {"%d, 5 % more", "%d, 5 % more"},
	                                                         {"plain", "%s"}};
	for (const auto &[id, translation] : fitting)
		EXPECT_NO_THROW(parsed(with(id, translation))) << translation;
	const std::pair<const char *, const char *> others[] = {
		{"%d rows", "%s"}, {"%d rows", "%ld"}, {"%d rows", "%n"},       {"%s", "%s %s"}, {"%s", "%2$s"},
		{"%s", "%11$"},    {"%s", "%*s"},      {"%d rows %s", "%s %d"}, {"%s", "%1$n"},  {"%d", "% n"},
		{"%s", "%hhn"},    {"%s", "%"},        {"%s", "%1$y"}};
	for (const auto &[id, translation] : others)
		expectRefused(with(id, translation), "other % fields");
	expectRefused(made(std::string(header) + "msgid \"%d row\"\nmsgid_plural \"%d rows\"\nmsgstr[0] \"%d\"\n"
	                                         "msgstr[1] \"%s\"\n"),
	              "its translation of \"%d row");
}

TEST(Catalogue, is_a_file_that_can_be_read)
{
	TempFolder place;
	EXPECT_NO_THROW(Catalogue::load(place.write("good.mo", german())));

	ASSERT_EQ(mkfifo((place / "pipe").c_str(), 0600), 0);
	const std::pair<std::string, const char *> others[] = {{place / "pipe", "it is no file"},
	                                                       {place.path(), "it is no file"},
	                                                       {"/dev/zero", "it is no file"},
	                                                       {place / "missing", "No such file"},
	                                                       {place.write("empty.mo", ""), "it is none"}};
	for (const auto &[path, reason] : others) {
		SCOPED_TRACE(path);
		const std::string error = support::errorOf([&file = path] { Catalogue::load(file); });
		expectClear(error, path);
		EXPECT_NE(error.find(reason), std::string::npos) << error;
	}
	if (geteuid() == 0)
		return; // the superuser reads every file
	chmod((place / "good.mo").c_str(), 0);
	const std::string error = support::errorOf([&] { Catalogue::load(place / "good.mo"); });
	EXPECT_NE(error.find("Permission denied"), std::string::npos) << error;
}

// The text of a rule and the same rule compiled.
#define RULE(...)                                                                                            \
	{                                                                                                        \
#__VA_ARGS__, []([[maybe_unused]] unsigned long n) -> unsigned long { return __VA_ARGS__; }          \
	}

TEST(PluralRule, is_evaluated_as_the_compiler_does)
{
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wparentheses" // rules rarely have parentheses
	const struct
	{
		const char *text;
		unsigned long (*value)(unsigned long);
	} rules[] = {RULE(0),
	             RULE(n != 1),
	             RULE(n > 1),
	             RULE(n == 1   ? 0
	                  : n == 2 ? 1
	                           : 2),
	             RULE(n % 10 == 1 && n % 100 != 11                                    ? 0
	                  : n % 10 >= 2 && n % 10 <= 4 && (n % 100 < 10 || n % 100 >= 20) ? 1
	                                                                                  : 2),
	             RULE(n == 0                           ? 0
	                  : n == 1                         ? 1
	                  : n == 2                         ? 2
	                  : n % 100 >= 3 && n % 100 <= 10  ? 3
	                  : n % 100 >= 11 && n % 100 <= 99 ? 4
	                                                   : 5),
	             RULE(n == 1 || n == 11   ? 0
	                  : n == 2 || n == 12 ? 1
	                  : n > 2 && n < 20   ? 2
	                                      : 3),
	             RULE(n - 1 - 1),
	             RULE(n * 3 + 4 / 2 - 7 % 4),
	             RULE(20 - n * 2 - 1),
	             RULE(100 / (n + 1) / 2 % 7),
	             RULE(!n + !!n * 2),
	             RULE(!(n == 3) && n < 5),
	             RULE((((n)))),
	             RULE(n<3 == n> 1),
	             RULE(n == 1 || n == 2 && n == 3),
	             RULE(n ? n > 5 ? 3 : 4 : 2)};
#pragma GCC diagnostic pop
	for (const auto &rule : rules)
		for (unsigned long n = 0; n < 230; ++n)
			ASSERT_EQ(pluralForm(rule.text, n), rule.value(n)) << rule.text << ", n = " << n;
}

TEST(PluralRule, is_none_when_it_is_no_expression)
{
	for (const char *none : {"", " ", "m", "n n", "n !", "1 +", "(n", "n)", "n ? 1", "n ? 1 :", "n : 1",
	                         "n = 1", "n & 1", "n != ", "0x1", "n; 1", "-1", "()"})
		EXPECT_EQ(pluralForm(none, 1), std::nullopt) << none;
	EXPECT_EQ(pluralForm("n / 0 + n % 0", 5), 0u) << "there is nothing to be had by zero";
	EXPECT_EQ(pluralForm(support::repeat("(", 400) + "n" + support::repeat(")", 400), 5), 5u);
	for (const char *many : {"(", "!", "n?", "n+", "1"})
		for (const int times : {450, 1000000}) {
			// 450 digits are one number, whatever its value.
			const bool value = many == std::string("1") && times == 450;
			EXPECT_EQ(pluralForm(support::repeat(many, times), 5).has_value(), value) << many;
		}
}

} // namespace catalogue_test

#include "catalogue.h"

#include "desk_error.h"
#include "plural_rule.h"

#include <fcntl.h>
#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <optional>
#include <set>
#include <utility>

namespace desk
{

namespace
{

constexpr size_t mostBytes = 16 << 20;
constexpr std::string_view littleEndian = "\xde\x12\x04\x95";
constexpr std::string_view bigEndian = "\x95\x04\x12\xde";
constexpr std::string_view conversions = "douxXeEfFgGaAcsCSpnm";
constexpr size_t mostValues = 100; // of a format; ignores the rest

/// The number and type of each value that a format takes. Unless `blanks`, a per cent sign before a blank takes none:
/// printf accepts "% d", but many texts say "50 % more".
std::set<std::pair<unsigned, std::string>> valuesOf(std::string_view format, bool blanks)
{
	std::set<std::pair<unsigned, std::string>> values;
	unsigned next = 1;
	size_t at = 0;
	const auto skip = [&](const char *these) {
		const size_t from = at;
		at = std::min(format.find_first_not_of(these, at), format.size());
		return format.substr(from, at - from);
	};
	while (values.size() < mostValues && (at = format.find('%', at)) < format.size()) {
		++at;
		const std::string_view digits = skip("0123456789");
		unsigned number = 0;
		if (at < format.size() && format[at] == '$' && digits.size() < 4) {
			number = static_cast<unsigned>(std::stoul("0" + std::string(digits)));
			++at;
		}
		for (const char c : skip(blanks ? "-+#'I0123456789.*$ " : "-+#'I0123456789.*$"))
			if (c == '*')
				values.emplace(next++, "*");
		std::string type(skip("hlqLjzZt"));
		// printf does not define one that is cut off, or numbered with an unknown conversion.
		const char conversion = at == format.size() ? '\0' : format[at] == 'i' ? 'd' : format[at];
		at = std::min(at + 1, format.size());
		if (number || conversion == '\0' || conversions.find(conversion) != std::string_view::npos)
			values.emplace(number ? number : next++, type + conversion);
	}
	return values;
}

/// Whether `translation` takes the same values as `id`, which may include the plural.
bool fits(std::string_view translation, std::string_view id)
{
	id.remove_prefix(id.find('\4') + 1); // removes a context, if any
	const auto of = [](std::string_view texts, bool blanks) {
		std::set<std::pair<unsigned, std::string>> values;
		for (size_t from = 0; from <= texts.size();) {
			const size_t end = std::min(texts.find('\0', from), texts.size());
			values.merge(valuesOf(texts.substr(from, end - from), blanks));
			from = end + 1;
		}
		return values;
	};
	if (of(id, false).empty())
		return true; // not a format
	const auto given = of(id, true), taken = of(translation, true);
	return std::includes(given.begin(), given.end(), taken.begin(), taken.end());
}

/// The text after `name` in a header, up to one of `ends`.
std::string_view valueIn(std::string_view header, std::string_view name, const char *ends)
{
	const size_t at = header.find(name);
	if (at == std::string_view::npos)
		return {};
	header.remove_prefix(at + name.size());
	return header.substr(0, header.find_first_of(ends));
}

} // namespace

Catalogue Catalogue::load(const std::string &path)
{
	const auto failure = [&](const std::string &why) {
		return Error("cannot read the message catalogue '" + path + "': " + why);
	};
	// Not a stream: fopen counts as the plugin's. O_NONBLOCK, because a pipe would block.
	const int file = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
	if (file < 0)
		throw failure(std::strerror(errno));
	struct stat status;
	std::string bytes;
	ssize_t length = -1;
	const bool isFile = fstat(file, &status) == 0 && S_ISREG(status.st_mode);
	char piece[65536];
	while (isFile && bytes.size() <= mostBytes && (length = ::read(file, piece, sizeof piece)) > 0)
		bytes.append(piece, static_cast<size_t>(length));
	const int reason = errno;
	::close(file);
	if (!isFile)
		throw failure("it is no file; put one that msgfmt made there");
	if (length < 0)
		throw failure(std::strerror(reason));
	return parse(bytes, path);
}

Catalogue Catalogue::parse(const std::string &bytes, const std::string &path)
{
	Catalogue catalogue;
	catalogue.bytes.assign(bytes.begin(), bytes.end());
	if (const std::string wrong = catalogue.read(); !wrong.empty())
		throw Error("cannot use the message catalogue '" + path + "': " + wrong);
	return catalogue;
}

std::string Catalogue::read()
{
	const std::string_view file(bytes.data(), bytes.size());
	const bool little = file.substr(0, 4) == littleEndian;
	if (!little && file.substr(0, 4) != bigEndian)
		return "it is none; make it with msgfmt";
	if (file.size() > mostBytes)
		return "it is larger than 16 MiB";
	if (file.size() < 28)
		return "it is cut off; make it anew with msgfmt";
	// Offsets are sums of 32-bit numbers and cannot overflow here.
	const auto byteAt = [&](std::uint64_t at) {
		return static_cast<unsigned char>(file[static_cast<size_t>(at)]);
	};
	const auto number = [&](std::uint64_t at) {
		std::uint64_t value = 0;
		for (size_t i = 0; i < 4; ++i)
			value = value << 8 | byteAt(at + (little ? 3 - i : i));
		return value;
	};
	const std::uint64_t revision = number(4), count = number(8), ids = number(12), translations = number(16);
	if (revision >> 16 > 1)
		return "it is of a kind that is not known here; make it with msgfmt";
	if ((revision & 0xffff) != 0 && (file.size() < 40 || number(36) != 0))
		return "it has texts that depend on the processor, such as \"%<PRIu64>\"; write them as \"%s\"";
	if (ids + 8 * count > file.size() || translations + 8 * count > file.size())
		return "it is cut off; make it anew with msgfmt";

	std::uint64_t total = 0; // exceeds the file's size when texts share bytes
	const auto textAt = [&](std::uint64_t entry) -> std::optional<std::string_view> {
		const std::uint64_t length = number(entry), at = number(entry + 4);
		if (at + length >= file.size() || byteAt(at + length) != 0 || (total += length) > mostBytes)
			return std::nullopt;
		return file.substr(static_cast<size_t>(at), static_cast<size_t>(length));
	};
	for (std::uint64_t i = 0; i < count; ++i) {
		const auto id = textAt(ids + 8 * i), translation = textAt(translations + 8 * i);
		if (!id || !translation)
			return "its text number " + std::to_string(i + 1) +
			       " is damaged or cut off; make it anew with msgfmt";
		if (!fits(*translation, *id))
			return "its translation of \"" + std::string(id->substr(0, 60)) +
			       "\" has other % fields than that; mend it, and check it with msgfmt --check";
		texts.emplace(id->substr(0, id->find('\0')), *translation);
	}
	return readHeader();
}

std::string Catalogue::readHeader()
{
	const auto found = texts.find("");
	if (found == texts.end())
		return "";
	if (const std::string_view rule = valueIn(found->second, "plural=", ";\n"); pluralForm(rule, 1))
		pluralRule = rule;
	const std::string charset(valueIn(found->second, "charset=", " \t\n"));
	for (const char *known : {"", "UTF-8", "UTF8", "US-ASCII", "ASCII"})
		if (strcasecmp(charset.c_str(), known) == 0)
			return "";
	return "its character set is " + charset.substr(0, 60) +
	       "; make it UTF-8, with msgconv --to-code=UTF-8 and msgfmt";
}

const char *Catalogue::find(const char *id) const
{
	const auto found = texts.find(id);
	return found == texts.end() ? nullptr : found->second.data();
}

const char *Catalogue::find(const char *id, unsigned long n) const
{
	const auto found = texts.find(id);
	if (found == texts.end())
		return nullptr;
	std::string_view forms = found->second;
	for (unsigned long form = pluralForm(pluralRule, n).value_or(0); form > 0; --form) {
		const size_t end = forms.find('\0');
		if (end == std::string_view::npos)
			return found->second.data(); // too few forms
		forms.remove_prefix(end + 1);
	}
	return forms.data();
}

} // namespace desk

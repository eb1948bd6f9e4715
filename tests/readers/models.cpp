#include "models.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <limits>

namespace
{

/// Cuts a file into pieces, as fgets with a small buffer does.
class Pieces
{
public:
	Pieces(const std::string &file, std::size_t longestPiece) : bytes(file), longest(longestPiece) {}

	/// The next piece, NUL bytes and line end included; false at the end of the file.
	bool next(std::string &piece)
	{
		piece.clear();
		while (at < bytes.size() && piece.size() < longest) {
			piece += bytes[at++];
			if (piece.back() == '\n')
				break;
		}
		return !piece.empty();
	}

private:
	const std::string &bytes;
	const std::size_t longest;
	std::size_t at = 0;
};

std::string untilNul(const std::string &piece)
{
	return piece.substr(0, piece.find('\0'));
}

/// Takes words and numbers off the front of a text. On failure it leaves the target unchanged.
class Taker
{
public:
	explicit Taker(const std::string &piece) : text(untilNul(piece)) {}

	bool word(std::string &target)
	{
		skipBlanks();
		const std::size_t start = at;
		while (at < text.size() && !isBlank(text[at]))
			++at;
		if (at == start)
			return false;
		target = text.substr(start, at - start);
		return true;
	}

	bool character(char wanted)
	{
		if (at == text.size() || text[at] != wanted)
			return false;
		++at;
		return true;
	}

	bool decimal(int &target)
	{
		skipBlanks();
		const bool negative = sign();
		std::uint64_t magnitude = 0;
		if (!digits(10, magnitude))
			return false;
		// Clamps to long, then truncates to int.
		const std::uint64_t largest = std::numeric_limits<long>::max();
		magnitude = std::min(magnitude, negative ? largest + 1 : largest);
		target = static_cast<int>(static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude));
		return true;
	}

	bool hexadecimal(unsigned &target)
	{
		skipBlanks();
		const bool negative = sign();
		std::uint64_t magnitude = 0;
		bool any = false;
		if (at + 1 < text.size() && text[at] == '0' && (text[at + 1] == 'x' || text[at + 1] == 'X')) {
			at += 2;
			any = true; // a prefix without digits is the number 0
		}
		const bool some = digits(16, magnitude);
		if (!some && !any)
			return false;
		if (negative && !overflown)
			magnitude = 0 - magnitude;
		target = static_cast<unsigned>(magnitude);
		return true;
	}

private:
	static bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

	void skipBlanks()
	{
		while (at < text.size() && isBlank(text[at]))
			++at;
	}

	bool sign()
	{
		if (character('-'))
			return true;
		character('+');
		return false;
	}

	static unsigned valueOf(char c)
	{
		if (c >= '0' && c <= '9')
			return static_cast<unsigned>(c - '0');
		if (c >= 'a' && c <= 'f')
			return static_cast<unsigned>(c - 'a') + 10;
		if (c >= 'A' && c <= 'F')
			return static_cast<unsigned>(c - 'A') + 10;
		return 99;
	}

	bool digits(unsigned base, std::uint64_t &number)
	{
		const std::size_t start = at;
		overflown = false;
		for (; at < text.size() && valueOf(text[at]) < base; ++at) {
			const std::uint64_t most = std::numeric_limits<unsigned long>::max();
			const unsigned value = valueOf(text[at]);
			overflown = overflown || number > (most - value) / base;
			number = overflown ? most : number * base + value;
		}
		return at != start;
	}

	const std::string text;
	std::size_t at = 0;
	bool overflown = false;
};

std::string padded(std::string text, std::size_t width)
{
	if (text.size() < width)
		text.append(width - text.size(), ' ');
	return text;
}

std::string joined(std::initializer_list<std::string> parts)
{
	std::string text;
	for (const std::string &part : parts)
		text += part + '\0';
	return text;
}

template <class Log> std::string textOfLog(const Log &log)
{
	std::string text = joined({log.summary});
	for (const ScanLogEntry &entry : log.entries)
		text += joined({entry.text, entry.line});
	return text;
}

std::string eightDigits(unsigned number)
{
	std::string text;
	for (int shift = 28; shift >= 0; shift -= 4)
		text += "0123456789abcdef"[number >> shift & 15];
	return text;
}

} // namespace

MemInfoColumns modelMemInfo(const std::string &bytes)
{
	MemInfoColumns columns;
	std::string name;
	int value = 0;
	Pieces pieces(bytes, 29);
	std::string piece;
	for (int seen = 0; pieces.next(piece); ++seen) {
		Taker taker(piece);
		if (taker.word(name))
			taker.decimal(value);
		if (seen < 8)
			continue;
		columns.names += padded(name, 11) + '\n';
		columns.values += std::to_string(value) + " KB\n";
	}
	return columns;
}

MtdColumns modelMtd(const std::string &bytes)
{
	MtdColumns columns = {"dev:\n", "size\n", "erasesize\n", "name\n", 1};
	Pieces pieces(bytes, 1022);
	std::string line;
	pieces.next(line);
	while (pieces.next(line)) {
		int number = 0;
		unsigned size = 0;
		unsigned erasesize = 0;
		std::string words[3];
		Taker taker(line);
		if (taker.character('m') && taker.character('t') && taker.character('d') && taker.decimal(number) &&
		    taker.character(':') && taker.hexadecimal(size) && taker.hexadecimal(erasesize)) {
			for (std::string &word : words)
				taker.word(word);
		}
		columns.dev += "mtd" + std::to_string(number) + ":\n";
		columns.size += eightDigits(size) + '\n';
		columns.erasesize += eightDigits(erasesize) + '\n';
		columns.name += words[0] + ' ' + words[1] + ' ' + words[2] + '\n';
		++columns.rows;
	}
	return columns;
}

MountColumns modelMounts(const std::string &bytes)
{
	MountColumns columns = {padded("Filesystem", 35) + '\n',
	                        "Size    Used    Avail.  Use% " + padded("Mounted", 50) + '\n', 2};
	Pieces pieces(bytes, 1022);
	std::string line;
	pieces.next(line);
	while (pieces.next(line)) {
		std::string words[6];
		Taker taker(line);
		for (std::string &word : words)
			taker.word(word);
		columns.filesystem += padded(words[0], 35) + '\n';
		for (int figure = 1; figure <= 3; ++figure)
			columns.usage += padded(words[figure], 6) + "  ";
		columns.usage += padded(words[4], 4) + ' ' + padded(words[5], 50) + '\n';
		++columns.rows;
	}
	return columns;
}

PsSnapshot modelPs(const std::string &bytes)
{
	PsSnapshot snapshot;
	int pid = 0;
	Pieces pieces(bytes, 1022);
	std::string line;
	for (bool heading = true; pieces.next(line); heading = false) {
		Taker(line).decimal(pid);
		if (heading)
			snapshot.header = untilNul(line);
		else
			snapshot.rows.push_back({untilNul(line), std::to_string(pid)});
	}
	return snapshot;
}

ModelScanLog modelScanLog(const std::string &bytes, const std::string &path)
{
	ModelScanLog contents;
	std::string buffer(1024, '\0');
	Pieces pieces(bytes, 1022);
	std::string piece;
	for (int number = 0; pieces.next(piece); ++number) {
		buffer.replace(0, piece.size(), piece);
		buffer[piece.size()] = '\0';
		const std::string line = untilNul(piece);
		const std::string prefix = std::to_string(number) + ' ';
		if (line.find("start at") == std::string::npos) {
			contents.entries.push_back({prefix + line, line});
			continue;
		}
		for (const std::size_t start : {1u, 46u})
			contents.entries.push_back({prefix + untilNul(buffer.substr(start, 46)), line});
	}
	contents.summary = "size of " + path + " : " + std::to_string(bytes.size()) + " bytes";
	return contents;
}

std::string textOf(const MemInfoColumns &columns)
{
	return joined({columns.names, columns.values});
}

std::string textOf(const MtdColumns &columns)
{
	return joined({columns.dev, columns.size, columns.erasesize, columns.name, std::to_string(columns.rows)});
}

std::string textOf(const MountColumns &columns)
{
	return joined({columns.filesystem, columns.usage, std::to_string(columns.rows)});
}

std::string textOf(const PsSnapshot &snapshot)
{
	std::string text = joined({snapshot.header});
	for (const PsEntry &row : snapshot.rows)
		text += joined({row.text, row.pid});
	return text;
}

std::string textOf(const ScanLogContents &log)
{
	return textOfLog(log);
}

std::string textOf(const ModelScanLog &log)
{
	return textOfLog(log);
}

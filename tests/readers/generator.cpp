#include "generator.h"

std::string Generator::item()
{
	static const std::vector<std::string> blanks = {" ", " ", " ", "  ", "        ", "\t", "\v", "\f", "\r"};
	static const std::vector<std::string> numbers = {"0",
	                                                 "1",
	                                                 "42",
	                                                 "00020000",
	                                                 "2147483647",
	                                                 "2147483648",
	                                                 "-1",
	                                                 "+7",
	                                                 "-2147483649",
	                                                 "4294967295",
	                                                 "4294967296",
	                                                 "9223372036854775807",
	                                                 "9223372036854775808",
	                                                 "-9223372036854775808",
	                                                 "-9223372036854775809",
	                                                 "18446744073709551616",
	                                                 "ffffffff",
	                                                 "FFFFFFFFFFFFFFFF",
	                                                 "1ffffffffffffffff",
	                                                 "-ffffffffffffffffff",
	                                                 "0x10",
	                                                 "0X",
	                                                 "0xg",
	                                                 "+",
	                                                 "-",
	                                                 "- 1",
	                                                 "--1",
	                                                 "7:",
	                                                 ":"};
	switch (below(16)) {
	case 0:
		return {static_cast<char>(below(256))};
	case 1:
		return below(4) ? "%" : std::string(1, '\0');
	case 2:
		return std::to_string(random());
	case 3:
	case 4:
		return numbers[below(numbers.size())];
	case 5:
		return std::string(below(70), static_cast<char>('a' + below(26)));
	case 6:
	case 7:
	case 8:
	case 9:
	case 10:
		return words[below(words.size())];
	default:
		return blanks[below(blanks.size())];
	}
}

std::string Generator::line()
{
	std::string line;
	// A filled line puts its last item at a buffer's edge.
	if (below(3) == 0) {
		for (std::size_t count = below(6); count; --count)
			line += item();
		std::size_t length = edges[below(edges.size())];
		length += below(9);
		if (line.size() + 4 < length)
			line.append(length - line.size() - 4, below(2) ? ' ' : static_cast<char>('A' + below(26)));
	}
	for (std::size_t count = below(12); count; --count)
		line += item();
	return line;
}

std::string Generator::file()
{
	static const std::vector<std::string> ends = {"\n", "\n", "\n", "\n", "\n", "\n\n", "\r\n", ""};
	std::string file;
	for (std::size_t count = below(20); count; --count) {
		file += line();
		file += ends[below(ends.size())];
	}
	return file;
}

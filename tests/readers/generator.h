#ifndef VEXLO_GENERATOR_H
#define VEXLO_GENERATOR_H

#include <cstddef>
#include <random>
#include <string>
#include <utility>
#include <vector>

/// Makes files that are likely to break a parser: given words among blanks of every kind, numbers at the limits, NUL
/// bytes, high bytes, and line lengths around the given ones. A seed gives the same files on every computer.
class Generator
{
public:
	Generator(unsigned seed, std::vector<std::string> ownWords, std::vector<std::size_t> lineEdges)
		: random(seed), words(std::move(ownWords)), edges(std::move(lineEdges))
	{}

	std::string file();

private:
	std::size_t below(std::size_t count) { return random() % count; }
	std::string item();
	std::string line();

	std::mt19937 random;
	std::vector<std::string> words;
	std::vector<std::size_t> edges;
};

#endif

#ifndef BENCHMARKS_READERS_H
#define BENCHMARKS_READERS_H

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench
{

/// One reader and its baseline. `read` and `readPlainly` read the stream and free the result; `same` compares both
/// results.
struct Pair
{
	std::string name;
	std::string input;
	int lines;
	std::function<void(FILE *)> read;
	std::function<void(FILE *)> readPlainly;
	std::function<bool(FILE *)> same;
};

std::vector<Pair> pairs();

/// A temporary file with this content, at its start. Ends the program on failure.
FILE *streamOf(const std::string &content);

} // namespace bench

#endif

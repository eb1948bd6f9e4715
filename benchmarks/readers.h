#ifndef BENCHMARKS_READERS_H
#define BENCHMARKS_READERS_H

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench
{

/// One reader with its baseline. `read` and `readPlainly` read the stream and let go of the result;
/// `same` compares what the two give.
struct Pair
{
	std::string name;
	std::string input;
	int lines;
	std::function<void(FILE *)> read;
	std::function<void(FILE *)> readPlainly;
	std::function<bool(FILE *)> same;
};

/// All of them.
std::vector<Pair> pairs();

/// A temporary file with this content, at its start; ends the program when there can be none.
FILE *streamOf(const std::string &content);

} // namespace bench

#endif

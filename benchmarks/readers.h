#ifndef BENCHMARKS_READERS_H
#define BENCHMARKS_READERS_H

#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace bench
{

/// One reader, and the tests' second implementation of it as the baseline. Both read `input` and free the result.
struct Pair
{
	std::string name;
	std::string input;
	int lines = 0;
	double limit = 0; ///< of the reader's time, as a multiple of the model's
	std::function<void(FILE *)> read;
	std::function<void(const std::string &)> readByModel;
	std::function<bool(FILE *, const std::string &)> same; ///< whether both give the same result
};

std::vector<Pair> pairs();

/// A temporary file with this content, at its start. Ends the program on failure.
FILE *streamOf(const std::string &content);

} // namespace bench

#endif

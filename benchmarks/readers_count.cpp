// Compares a reader with its model once, and runs one of them while an outside tool counts instructions.

#include "readers.h"

#include <cstdlib>

int main(int count, char **arguments)
{
	const std::vector<bench::Pair> all = bench::pairs();
	if (count == 1) {
		for (const bench::Pair &pair : all)
			std::printf("%s\t%d\n", pair.name.c_str(), pair.lines);
		return 0;
	}
	const std::string name = count == 4 ? arguments[1] : "", which = count == 4 ? arguments[2] : "";
	for (const bench::Pair &pair : all) {
		if (pair.name != name || (which != "reader" && which != "model"))
			continue;
		FILE *stream = bench::streamOf(pair.input);
		if (!pair.same(stream, pair.input)) {
			std::fprintf(stderr, "readers_count: %s: reader and model give different results\n",
			             name.c_str());
			return 1;
		}
		for (int times = std::atoi(arguments[3]); times > 0; --times) {
			std::rewind(stream);
			if (which == "model")
				pair.readByModel(pair.input);
			else
				pair.read(stream);
		}
		return 0;
	}
	std::fprintf(stderr,
	             "usage: readers_count [NAME reader|model TIMES]; without arguments: names and lines\n");
	return 2;
}

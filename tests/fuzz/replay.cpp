// Replays inputs from files without a fuzzer: replay FOLDER...

#include "target.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

int main(int argc, char **argv)
{
	std::vector<std::filesystem::path> inputs;
	for (int i = 1; i < argc; ++i)
		for (const auto &entry : std::filesystem::directory_iterator(argv[i]))
			inputs.push_back(entry.path());
	std::sort(inputs.begin(), inputs.end());

	for (const std::filesystem::path &input : inputs) {
		std::ifstream file(input, std::ios::binary);
		const std::string bytes{std::istreambuf_iterator<char>(file), {}};
		if (!file) {
			fprintf(stderr, "replay: cannot read %s\n", input.c_str());
			return 1;
		}
		// The last name printed is that of the input that aborts.
		printf("%s (%zu bytes)\n", input.filename().c_str(), bytes.size());
		fflush(stdout);
		LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t *>(bytes.data()), bytes.size());
	}
	printf("%zu inputs\n", inputs.size());
	if (inputs.empty())
		fprintf(stderr, "replay: there are no inputs\n");
	return inputs.empty() ? 1 : 0;
}

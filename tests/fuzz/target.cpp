#include "target.h"

#include "debug_line.h"

#include <cstdlib>

namespace fuzz
{

std::unique_ptr<FILE, Closer> streamOf(const std::string &bytes)
{
	std::unique_ptr<FILE, Closer> stream(fmemopen(const_cast<char *>(bytes.data()), bytes.size(), "r"));
	require(stream != nullptr, "no stream for the input");
	return stream;
}

void require(bool holds, const char *what)
{
	if (holds)
		return;
	fprintf(stderr, "fuzz target: %s\n", what);
	abort();
}

} // namespace fuzz

// The parsers never call it; other functions of the same libraries do.
void eDebug(const char *, ...) {}

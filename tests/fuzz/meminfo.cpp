// The memory summary, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const MemInfoColumns read = parseMemInfo(fuzz::streamOf(bytes).get());
	const MemInfoColumns wanted = modelMemInfo(bytes);
	fuzz::require(read.names == wanted.names, "the names differ from the model's");
	fuzz::require(read.values == wanted.values, "the values differ from the model's");
	return 0;
}

// The mounted file systems, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const MountColumns read = parseMountColumns(fuzz::streamOf(bytes).get());
	const MountColumns wanted = modelMounts(bytes);
	fuzz::require(read.filesystem == wanted.filesystem, "the file systems differ from the model's");
	fuzz::require(read.usage == wanted.usage, "the figures differ from the model's");
	fuzz::require(read.rows == wanted.rows, "the number of rows differs from the model's");
	return 0;
}

// The flash partitions, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const MtdColumns read = parseMtdColumns(fuzz::streamOf(bytes).get());
	const MtdColumns wanted = modelMtd(bytes);
	fuzz::require(read.dev == wanted.dev, "the devices differ from the model's");
	fuzz::require(read.size == wanted.size, "the sizes differ from the model's");
	fuzz::require(read.erasesize == wanted.erasesize, "the erase sizes differ from the model's");
	fuzz::require(read.name == wanted.name, "the names differ from the model's");
	fuzz::require(read.rows == wanted.rows, "the number of rows differs from the model's");
	return 0;
}

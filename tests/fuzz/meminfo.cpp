// The memory summary, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	return fuzz::compare(data, size, parseMemInfo, modelMemInfo);
}

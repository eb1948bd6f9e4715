// A reader of the plugin, compared with its model byte for byte. CMakeLists.txt names both.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	return fuzz::compare(data, size, READER, MODEL);
}

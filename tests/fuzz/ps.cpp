// The process list, byte for byte as the model has it.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const PsSnapshot read = parsePsSnapshot(fuzz::streamOf(bytes).get());
	const PsSnapshot wanted = modelPs(bytes);
	fuzz::require(read.header == wanted.header, "the heading differs from the model's");
	fuzz::require(read.rows.size() == wanted.rows.size(), "the number of rows differs from the model's");
	for (std::size_t row = 0; row < read.rows.size(); ++row) {
		fuzz::require(read.rows[row].text == wanted.rows[row].text, "a row differs from the model's");
		fuzz::require(read.rows[row].pid == wanted.rows[row].pid, "a row's pid differs from the model's");
	}
	return 0;
}

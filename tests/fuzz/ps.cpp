// The process list, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const PsSnapshot read = parsePsSnapshot(fuzz::streamOf(bytes).get());
	const PsSnapshot wanted = modelPs(bytes);
	fuzz::require(read.header == wanted.header, "the heading differs from the model's");
	fuzz::require(read.rows.size() == wanted.rows.size(), "the number of rows differs from the model's");
	auto expected = wanted.rows.begin();
	for (const PsEntry &row : read.rows) {
		fuzz::require(row.text == expected->text, "a row differs from the model's");
		fuzz::require(row.pid == expected->pid, "a row's pid differs from the model's");
		++expected;
	}
	return 0;
}

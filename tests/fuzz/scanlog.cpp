// The scan log, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const ScanLogContents read = parseScanLog(fuzz::streamOf(bytes).get(), "/var/scaning.log");
	const ModelScanLog wanted = modelScanLog(bytes, "/var/scaning.log");
	fuzz::require(read.found, "a log that is open was not found");
	fuzz::require(read.summary == wanted.summary, "the summary differs from the model's");
	fuzz::require(read.entries.size() == wanted.entries.size(),
	              "the number of entries differs from the model's");
	auto expected = wanted.entries.begin();
	for (const ScanLogEntry &entry : read.entries) {
		fuzz::require(entry.text == expected->text, "an entry differs from the model's");
		fuzz::require(entry.line == expected->line, "an entry's line differs from the model's");
		++expected;
	}
	return 0;
}

// The scan log, byte for byte as the model has it.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	const std::string bytes = fuzz::text(data, size);
	const ScanLogContents read = parseScanLog(fuzz::streamOf(bytes).get(), "/var/scaning.log");
	const ScanLogContents wanted = modelScanLog(bytes, "/var/scaning.log");
	fuzz::require(read.found, "a log that is open was not found");
	fuzz::require(read.summary == wanted.summary, "the summary differs from the model's");
	const std::size_t count = wanted.entries.size();
	fuzz::require(read.entries.size() == count, "the number of entries differs from the model's");
	for (std::size_t i = 0; i < count; ++i) {
		const ScanLogEntry &entry = read.entries[i];
		fuzz::require(entry.text == wanted.entries[i].text, "an entry differs from the model's");
		fuzz::require(entry.line == wanted.entries[i].line, "an entry's line differs from the model's");
	}
	return 0;
}

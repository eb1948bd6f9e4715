// The scan log, compared with the model byte for byte.

#include "models.h"
#include "target.h"

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	constexpr char path[] = "/var/scaning.log";
	const auto read = [&](FILE *stream) {
		const ScanLogContents log = parseScanLog(stream, path);
		fuzz::require(log.found, "a log that is open was not found");
		return log;
	};
	return fuzz::compare(data, size, read,
	                     [&](const std::string &bytes) { return modelScanLog(bytes, path); });
}

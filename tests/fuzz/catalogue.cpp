// Message catalogues: any bytes give usable texts or an error.

#include "catalogue.h"
#include "desk_error.h"
#include "target.h"

#include <cstring>
#include <optional>

namespace
{

/// The text ends within the catalogue's bytes: the sanitizer sees a read beyond them.
void requireUsable(const char *text, std::size_t size)
{
	fuzz::require(!text || std::strlen(text) < size, "a text is larger than its catalogue");
}

} // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
	std::optional<desk::Catalogue> catalogue;
	try {
		catalogue = desk::Catalogue::parse(fuzz::text(data, size), "fuzzed.mo");
	} catch (const desk::Error &error) {
		fuzz::require(error.line.find("fuzzed.mo") != std::string::npos, "the error does not name the file");
		return 0;
	}
	for (const char *id : {"", "a", "%s", "%d row", "menu\4a"}) {
		requireUsable(catalogue->find(id), size);
		for (const unsigned long n : {0ul, 1ul, 2ul, 5ul, 11ul, ~0ul})
			requireUsable(catalogue->find(id, n), size);
	}
	if (const char *format = catalogue->find("%s")) {
		char text[64];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral" // the test tries that the format takes no other value
		snprintf(text, sizeof text, format, "value");
#pragma GCC diagnostic pop
	}
	return 0;
}

#include "older_meminfo.h"

#include <algorithm>
#include <limits>
#include <map>

namespace desk
{

namespace
{

using Number = unsigned long long;
using Quantities = std::map<std::string, Number>; ///< in kB

template <class... Args> std::string formatted(const char *format, Args... args)
{
	char text[200];
	snprintf(text, sizeof text, format, args...);
	return text;
}

Quantities read(FILE *meminfo)
{
	Quantities quantities;
	char line[200], name[64];
	for (Number value; fgets(line, sizeof line, meminfo);)
		if (sscanf(line, "%63[^:]: %llu", name, &value) == 2)
			quantities[name] = value;
	// Quantities that kernels no longer have, or only on 32-bit processors.
	quantities.emplace("MemShared", quantities["Shmem"]);
	quantities.emplace("LowTotal", quantities["MemTotal"]);
	quantities.emplace("LowFree", quantities["MemFree"]);
	return quantities;
}

/// The table's lines. `most` limits the figures.
std::string table(Quantities quantities, Number most)
{
	const auto bytes = [&](const char *name, const char *without = nullptr) {
		const Number rest = without ? quantities[without] : 0;
		return std::min((quantities[name] - rest) * 1024, most);
	};
	return "        total:    used:    free:  shared: buffers:  cached:\n" +
	       formatted("Mem:  %8llu %8llu %8llu %8llu %8llu %8llu\n", bytes("MemTotal"),
	                 bytes("MemTotal", "MemFree"), bytes("MemFree"), bytes("MemShared"), bytes("Buffers"),
	                 bytes("Cached")) +
	       formatted("Swap: %8llu %8llu %8llu\n", bytes("SwapTotal"), bytes("SwapTotal", "SwapFree"),
	                 bytes("SwapFree"));
}

} // namespace

std::string olderMeminfo(FILE *meminfo)
{
	Quantities quantities = read(meminfo);
	std::string text = table(quantities, std::numeric_limits<Number>::max());
	// The table must be eight pieces of 29 characters for a reader, of which the memory's line makes three. Beyond a
	// terabyte that line may be longer, so limit figures to twelve digits.
	constexpr size_t heading = 60, pieces = 3 * 29;
	if (text.find('\n', heading) >= heading + pieces)
		text = table(quantities, 999'999'999'999);

	for (const char *name :
	     {"MemTotal", "MemFree", "MemShared", "Buffers", "Cached", "SwapCached", "Active", "Inactive",
	      "HighTotal", "HighFree", "LowTotal", "LowFree", "SwapTotal", "SwapFree"})
		text += formatted("%-14s%8llu kB\n", (std::string(name) + ':').c_str(), quantities[name]);
	return text;
}

} // namespace desk

#ifndef VEXLO_FUZZ_TARGET_H
#define VEXLO_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

/// Each fuzz target defines it: tries one input, and aborts when a check fails. The fuzzer or replay.cpp calls it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

namespace fuzz
{

inline std::string text(const std::uint8_t *data, std::size_t size)
{
	return size ? std::string(reinterpret_cast<const char *>(data), size) : std::string();
}

struct Closer
{
	void operator()(FILE *stream) const { fclose(stream); }
};

/// A stream that reads `bytes`, which must outlive it.
std::unique_ptr<FILE, Closer> streamOf(const std::string &bytes);

/// Unless `holds`, prints `what` on standard error and aborts.
void require(bool holds, const char *what);

/// Tries a reader of the plugin on one input, and compares its result with its model's (see models.h).
template <class Read, class Model>
int compare(const std::uint8_t *data, std::size_t size, Read read, Model model)
{
	const std::string bytes = text(data, size);
	require(textOf(read(streamOf(bytes).get())) == textOf(model(bytes)), "the reader differs from its model");
	return 0;
}

} // namespace fuzz

#endif

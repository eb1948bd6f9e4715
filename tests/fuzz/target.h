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

} // namespace fuzz

#endif

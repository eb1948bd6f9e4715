#ifndef VEXLO_FUZZ_TARGET_H
#define VEXLO_FUZZ_TARGET_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

/// What each fuzz target defines: tries one input and ends the program when something is wrong.
/// The fuzzer calls it, and so does replay.cpp where there is no fuzzer.
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

/// A stream that gives `bytes`, which must outlive it.
std::unique_ptr<FILE, Closer> streamOf(const std::string &bytes);

/// Says what is wrong on standard error, and ends the program, unless `holds`.
void require(bool holds, const char *what);

} // namespace fuzz

#endif

#ifndef VEXLO_STREAMS_H
#define VEXLO_STREAMS_H

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

struct StreamCloser
{
	void operator()(FILE *stream) const { fclose(stream); }
};
using Stream = std::unique_ptr<FILE, StreamCloser>;

/// A stream that reads `bytes`, which must outlive it.
Stream streamOf(const std::string &bytes);
Stream streamOf(std::string &&) = delete;

/// A stream that reads `bytes` and then fails instead of ending. With `recovers`, only the first read fails.
Stream failingStream(const std::string &bytes, bool recovers = false);

/// A stream that reads `bytes`, and then `later`, which is appended once `bytes` were read.
Stream growingStream(const std::string &bytes, const std::string &later);

/// The contents of tests/fixtures/`name`; fails the test when it cannot be read. `name`.long32 has the expectation
/// for a `long` of 32 bits where a number does not fit.
std::string fixture(const std::string &name);

/// Chooses by the size of `long`.
template <class Expected> Expected byLong(Expected with64, Expected with32)
{
	return sizeof(long) == 8 ? with64 : with32;
}

/// Names, for fixture(), of the inputs in tests/fixtures/`folder`, without the expectations.
std::vector<std::string> fixturesIn(const std::string &folder);

/// `text` for a failure message: printable, and cut if long.
std::string shown(const std::string &text);

#endif

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

/// A stream that gives `bytes`, which must outlive it.
Stream streamOf(const std::string &bytes);
Stream streamOf(std::string &&) = delete;

/// A stream that gives `bytes` and then fails instead of ending. With `recovers`, the first
/// reading fails and what follows works.
Stream failingStream(const std::string &bytes, bool recovers = false);

/// A stream that gives `bytes`, and then `later`, which was not there before.
Stream growingStream(const std::string &bytes, const std::string &later);

/// The contents of tests/fixtures/`name`; fails the test when it cannot be read. An expectation with numbers
/// that do not fit into a `long` of 32 bits has a second file with `.long32` after its name: what such a C
/// library makes of them.
std::string fixture(const std::string &name);

/// What is expected where a `long` has 64 bits, or 32.
template <class Expected> Expected byLong(Expected with64, Expected with32)
{
	return sizeof(long) == 8 ? with64 : with32;
}

/// Names, for fixture(), of what is to be read in tests/fixtures/`folder`: not the expectations.
std::vector<std::string> fixturesIn(const std::string &folder);

/// `text` for a failure message: printable, and cut where it is long.
std::string shown(const std::string &text);

#endif

#ifndef VEXLO_FAKE_PLATFORM_H
#define VEXLO_FAKE_PLATFORM_H

#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/// Lets a test answer the libc functions that a host may replace, and eDebug.
///
/// The test programs define fopen, fclose, remove, system, dcgettext and sscanf as a host does. Without a
/// FakePlatform they call libc's, except that fclose(NULL) returns EOF. While a FakePlatform exists (one at a time),
/// it records and answers them.
class FakePlatform
{
public:
	FakePlatform();
	~FakePlatform();
	FakePlatform(const FakePlatform &) = delete;
	FakePlatform &operator=(const FakePlatform &) = delete;

	/// From now on fopen of `path` fails.
	void failOpening(const std::string &path) { answerOpening(path, nullptr); }

	/// The next fopen of `path` returns `stream`, which the caller then owns.
	void answerOpening(const std::string &path, FILE *stream) { openings[path] = stream; }

	/// From now on system() calls `instead` and runs no shell.
	void replaceShell(std::function<void()> instead = [] {});

	/// Calls in order: `fopen("/x", "r")`, `fclose(stream)` (of recorded streams only),
	/// `fclose(null)`, `remove("/x")`, `system("ls")`, `eDebug("line")`.
	std::vector<std::string> calls;

	/// The formats given to eDebug, in order: a host may do more with them than format.
	std::vector<std::string> debugFormats;

	/// Look-ups in order: `dcgettext(null, "text", 5)`.
	std::vector<std::string> lookUps;

	/// Translations that dcgettext finds; it returns other texts unchanged.
	std::map<std::string, std::string> catalogue;
	bool catalogueIsNull = false; ///< dcgettext returns null for every text

	/// sscanf of an input that contains this text returns 0 and stores nothing; empty: works for every input.
	std::string unparseable;

	std::map<std::string, FILE *> openings;
	std::set<FILE *> streams; ///< opened and not yet closed
	std::function<void()> shell;
};

#endif

#ifndef VEXLO_FAKE_PLATFORM_H
#define VEXLO_FAKE_PLATFORM_H

#include <cstdio>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/// The libc calls that a host may answer itself, and eDebug, in the hands of a test.
///
/// The test programs define fopen, fclose, remove, system, dcgettext and sscanf, as a host does.
/// Without a FakePlatform they do what libc's do, but for fclose(NULL), which returns EOF. While
/// one lives (there may be one at a time), they are recorded and answered as it says.
class FakePlatform
{
public:
	FakePlatform();
	~FakePlatform();
	FakePlatform(const FakePlatform &) = delete;
	FakePlatform &operator=(const FakePlatform &) = delete;

	/// From now on fopen of `path` fails.
	void failOpening(const std::string &path) { answerOpening(path, nullptr); }

	/// The next fopen of `path` returns `stream`, which the opener then owns.
	void answerOpening(const std::string &path, FILE *stream) { openings[path] = stream; }

	/// From now on system() runs no shell, but `instead`.
	void replaceShell(std::function<void()> instead = [] {});

	/// Calls in order: `fopen("/x", "r")`, `fclose(stream)` (of recorded streams only),
	/// `fclose(null)`, `remove("/x")`, `system("ls")`, `eDebug("line")`.
	std::vector<std::string> calls;

	/// The formats that eDebug was given, in order: a host may do more with them than format.
	std::vector<std::string> debugFormats;

	/// Look-ups in order: `dcgettext(null, "text", 5)`.
	std::vector<std::string> lookUps;

	/// What dcgettext finds; other texts come back as themselves.
	std::map<std::string, std::string> catalogue;
	bool catalogueIsNull = false; ///< dcgettext returns null, whatever the text

	/// sscanf of an input that contains this text returns 0 and stores nothing; empty: none does.
	std::string unparseable;

	// For the fake calls.
	std::map<std::string, FILE *> openings;
	std::set<FILE *> streams; ///< opened and not yet closed
	std::function<void()> shell;
};

#endif

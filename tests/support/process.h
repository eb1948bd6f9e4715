#ifndef VEXLO_TESTS_PROCESS_H
#define VEXLO_TESTS_PROCESS_H

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace support
{

using Command = std::vector<std::string>;

/// Added to the environment of this process; an empty value removes.
using Environment = std::map<std::string, std::string>;

/// The command as this computer can execute it: where the tests run in an emulator, a program for their
/// processor does as well.
Command runnable(Command command);

/// What a program did. `status` is its exit status, or 128 plus the signal that ended it.
struct Outcome
{
	int status = -1;
	std::string out, err;
};

/// Runs a program to its end, without input.
Outcome run(const Command &command, const Environment &environment = {});

/// Looks again and again until it holds; false when that takes longer than any busy machine needs.
bool eventually(const std::function<bool()> &holds);

/// A program that runs beside the test. Killed with the object, and with the test.
class Child
{
public:
	Child() = default;
	~Child() { end(); }
	Child(const Child &) = delete;
	Child &operator=(const Child &) = delete;

	/// line() reads what it writes to the descriptor `output`.
	void start(const Command &command, const Environment &environment = {}, int output = 1);
	void end();

	pid_t pid() const { return id; }
	bool lives() const;
	void signal(int number) const;

	/// Waits for its end; the status as in Outcome, -1 when it does not end.
	int exitStatus();

	/// Waits for the next line that it prints; "(nothing)" when it prints none.
	std::string line();

	/// True when it prints something within this time.
	bool printsWithin(int milliseconds) const;

	/// Ticks of CPU that it has used so far.
	long cpu() const;

private:
	pid_t id = -1;
	int out = -1;
	std::string buffer; ///< read, and not yet asked for
};

} // namespace support

#endif

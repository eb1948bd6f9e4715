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

/// Added to this process's environment; an empty value removes the variable.
using Environment = std::map<std::string, std::string>;

/// The command as this computer can execute it: with the emulator before a program of another processor.
Command runnable(Command command);

/// The result of a program. `status` is its exit status, or 128 plus the signal that ended it.
struct Outcome
{
	int status = -1;
	std::string out, err;
};

/// Runs a program to its end, without standard input.
Outcome run(const Command &command, const Environment &environment = {});

/// Repeats until `holds` is true; returns false after a minute.
bool eventually(const std::function<bool()> &holds);

/// The processes that a process has started and that are left.
std::vector<pid_t> childrenOf(pid_t process);

/// Whether a process has ended, even if its parent does not know yet.
bool hasEnded(pid_t process);

/// CPU ticks that a process has used so far.
long cpuOf(pid_t process);

/// A program that runs beside the test. It is killed with the object, and when the test ends.
class Child
{
public:
	Child() = default;
	~Child() { end(); }
	Child(const Child &) = delete;
	Child &operator=(const Child &) = delete;

	/// line() reads what the program writes to descriptor `output`.
	void start(const Command &command, const Environment &environment = {}, int output = 1);
	void end();

	pid_t pid() const { return id; }
	bool lives() const;
	void signal(int number) const;

	/// Waits for the program's end. Returns the status as in Outcome, or -1 when it does not end.
	int exitStatus();

	/// Waits for the next line of output; "(nothing)" when none comes.
	std::string line();

	long cpu() const { return cpuOf(id); }

private:
	pid_t id = -1;
	int out = -1;
	std::string buffer; ///< read from the pipe, not yet returned by line()
};

} // namespace support

#endif

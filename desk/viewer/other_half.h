#ifndef DESK_VIEWER_OTHER_HALF_H
#define DESK_VIEWER_OTHER_HALF_H

#include "channel.h"
#include "message.h"

#include <sys/types.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace desk
{

/// The process that runs the plugin, and the connection to it. The destructor ends it.
class OtherHalf
{
public:
	/// Starts `program` with the command prefix `sandbox` and the shell command `through`, both optional. Its
	/// standard error goes to `errors`. Throws an Error on failure.
	static std::unique_ptr<OtherHalf> start(const std::string &program, std::vector<std::string> sandbox,
	                                        const std::string &through, int errors);
	~OtherHalf();
	OtherHalf(const OtherHalf &) = delete;
	OtherHalf &operator=(const OtherHalf &) = delete;

	int descriptor() const { return channel ? channel->in() : -1; }
	bool wantsToWrite() const { return channel && !channel->sendsAll(); }

	void send(const ToHost &message);
	void flush();
	/// Reads pending bytes; then next() returns the messages.
	void read();
	/// The next message, if any.
	std::optional<ToViewer> next();
	/// An invalid message came.
	bool isBroken() const { return broken; }

	/// Closes the connection; the process then ends by itself.
	void hangUp() { channel.reset(); }
	void kill();

	/// No message can follow.
	bool isSilent() const { return silent; }
	/// The status from waitpid(); nullopt: still running.
	std::optional<int> ending() const { return status; }
	/// To be called on SIGCHLD: checks whether this process ended.
	void reap();
	pid_t id() const { return process; }

private:
	OtherHalf(pid_t child, int wire, bool sandbox)
		: process(child), inSandbox(sandbox), channel(std::make_unique<Channel>(wire, wire))
	{}
	void hasEnded(int how);

	const pid_t process;
	const bool inSandbox; ///< the process is bubblewrap, and the half its descendant
	std::unique_ptr<Channel> channel;
	bool broken = false, silent = false;
	std::optional<int> status;
};

/// Reaps ended children other than the half: orphans of its commands.
void reapOrphans(const OtherHalf *half);

} // namespace desk

#endif

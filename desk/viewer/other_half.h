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

/// The process that runs the plugin, and the way to it. It ends with this object.
class OtherHalf
{
public:
	/// Starts `program`, by the words `sandbox` and the shell's command `through` where there are any. What it writes to standard error goes to
	/// `errors`. Throws an Error when it cannot be started.
	static std::unique_ptr<OtherHalf> start(const std::string &program, std::vector<std::string> sandbox,
	                                        const std::string &through, int errors);
	~OtherHalf();
	OtherHalf(const OtherHalf &) = delete;
	OtherHalf &operator=(const OtherHalf &) = delete;

	int descriptor() const { return channel ? channel->in() : -1; }
	bool wantsToWrite() const { return channel && !channel->sendsAll(); }

	void send(const ToHost &message);
	void flush();
	/// Reads what there is; afterwards next() has the messages.
	void read();
	/// The next message. Nothing: none so far.
	std::optional<ToViewer> next();
	/// What comes are no messages.
	bool isBroken() const { return broken; }

	/// Has nothing more to say to it, which then ends by itself.
	void hangUp() { channel.reset(); }
	void kill();

	/// It can say nothing more.
	bool isSilent() const { return silent; }
	/// How it has ended, as waitpid() gives it; nothing: it lives.
	std::optional<int> ending() const { return status; }
	/// A child has ended: looks whether it was this one.
	void reap();
	pid_t id() const { return process; }

private:
	OtherHalf(pid_t child, int wire, bool sandbox)
		: process(child), inSandbox(sandbox), channel(std::make_unique<Channel>(wire, wire))
	{}
	void hasEnded(int how);

	const pid_t process;
	const bool inSandbox; ///< the process is bubblewrap, and that half one of its own
	std::unique_ptr<Channel> channel;
	bool broken = false, silent = false;
	std::optional<int> status;
};

/// Forgets the children of this process that have ended, but for the half: orphans of its commands.
void reapOrphans(const OtherHalf *half);

} // namespace desk

#endif

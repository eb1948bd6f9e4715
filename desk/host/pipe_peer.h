#ifndef DESK_HOST_PIPE_PEER_H
#define DESK_HOST_PIPE_PEER_H

#include "channel.h"
#include "peer.h"

#include <sys/types.h>
#include <unistd.h>

#include <mutex>

namespace desk
{

/// The connection to the viewer's half over two descriptors. In a process forked by the plugin it sends nothing, and
/// ends the process when that waits for a message.
class PipePeer : public Peer
{
public:
	PipePeer(int in, int out) : channel(in, out) {}

	void send(const ToViewer &message) override;
	std::optional<ToHost> receive() override;

private:
	const pid_t self = getpid();
	Channel channel;
	std::recursive_mutex sending; ///< a plugin may have threads
	bool isSending = false;
};

} // namespace desk

#endif

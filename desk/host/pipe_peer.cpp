#include "pipe_peer.h"

namespace desk
{

void PipePeer::send(const ToViewer &message)
{
	if (getpid() != self)
		return;
	const std::lock_guard<std::recursive_mutex> alone(sending);
	if (isSending)
		return; // called by a signal handler while another message is sent
	isSending = true;
	channel.put(encode(message));
	channel.flush();
	isSending = false;
}

std::optional<ToHost> PipePeer::receive()
{
	while (getpid() == self) {
		if (const std::optional<std::string> bytes = channel.next())
			return decodeToHost(*bytes);
		if (channel.isBroken() || channel.read() == Channel::Came::end)
			return std::nullopt;
	}
	_exit(0);
}

} // namespace desk

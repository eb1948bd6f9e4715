#include "pipe_peer.h"

namespace desk
{

void PipePeer::send(const ToViewer &message)
{
	channel.put(encode(message));
	channel.flush();
}

std::optional<ToHost> PipePeer::receive()
{
	for (;;) {
		if (const std::optional<std::string> bytes = channel.next())
			return decodeToHost(*bytes);
		if (channel.isBroken() || channel.read() == Channel::Came::end)
			return std::nullopt;
	}
}

} // namespace desk

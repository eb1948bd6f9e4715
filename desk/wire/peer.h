#ifndef DESK_WIRE_PEER_H
#define DESK_WIRE_PEER_H

#include "message.h"

#include <optional>

namespace desk
{

/// The viewer's half as seen by the plugin's half.
class Peer
{
public:
	virtual ~Peer() = default;

	virtual void send(const ToViewer &message) = 0;

	/// Waits for a message. nullopt: the viewer's half has ended.
	virtual std::optional<ToHost> receive() = 0;
};

} // namespace desk

#endif

#ifndef NETWORK_TABLE_H
#define NETWORK_TABLE_H

#include <cstdio>
#include <string>
#include <vector>

enum class Link
{
	up,
	noCable,
	down,
};

/// A network interface of the receiver.
struct NetworkInterface
{
	std::string name;
	Link link;
	std::vector<std::string> addresses; ///< with the length of the prefix: 192.168.1.20/24
};

/// Runs `ip addr` by way of /var/tmp/network.tmp and waits for it; the file is gone afterwards. Empty when
/// nothing could be read.
std::vector<NetworkInterface> readNetworkInterfaces();

/// Reads `stream` (not null, left open), what `ip addr` prints. What is not understood is left out.
std::vector<NetworkInterface> parseNetworkInterfaces(FILE *stream);

/// The address of the default gateway from /proc/net/route; empty without one.
std::string readGateway();

/// Reads `stream` (not null, left open), a routing table as the kernel prints it.
std::string parseGateway(FILE *stream);

#endif

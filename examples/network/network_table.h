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
	std::vector<std::string> addresses; ///< with prefix length: 192.168.1.20/24
};

/// Runs `ip addr` by way of /var/tmp/network.tmp, waits, and removes the file. Empty on errors.
std::vector<NetworkInterface> readNetworkInterfaces();

/// Reads the output of `ip addr` from `stream` (not null, left open), and ignores what it does not understand.
std::vector<NetworkInterface> parseNetworkInterfaces(FILE *stream);

/// The address of the default gateway from /proc/net/route; empty without one.
std::string readGateway();

/// Reads a kernel's routing table from `stream` (not null, left open).
std::string parseGateway(FILE *stream);

#endif

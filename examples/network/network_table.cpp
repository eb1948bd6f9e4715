#include "network_table.h"

#include <cstdlib>
#include <cstring>

namespace
{

Link linkOf(const char *flags)
{
	if (strstr(flags, "LOWER_UP"))
		return Link::up;
	return strstr(flags, "NO-CARRIER") ? Link::noCable : Link::down;
}

} // namespace

std::vector<NetworkInterface> parseNetworkInterfaces(FILE *stream)
{
	std::vector<NetworkInterface> interfaces;
	char line[1024];
	while (fgets(line, sizeof line, stream)) {
		char name[32], flags[256], address[64];
		if (sscanf(line, "%*d: %31[^:@ ]%*[^<]<%255[^>]>", name, flags) == 2)
			interfaces.push_back({name, linkOf(flags), {}});
		else if (!interfaces.empty() && // in this order: the second would find address "6" in an "inet6" line
		         (sscanf(line, " inet6 %63s", address) == 1 || sscanf(line, " inet %63s", address) == 1))
			interfaces.back().addresses.push_back(address);
	}
	return interfaces;
}

std::vector<NetworkInterface> readNetworkInterfaces()
{
	std::vector<NetworkInterface> interfaces;
	if (std::system("ip addr >/var/tmp/network.tmp") == 0)
		if (FILE *stream = fopen("/var/tmp/network.tmp", "r")) {
			interfaces = parseNetworkInterfaces(stream);
			fclose(stream);
		}
	remove("/var/tmp/network.tmp");
	return interfaces;
}

std::string parseGateway(FILE *stream)
{
	char line[256];
	while (fgets(line, sizeof line, stream)) {
		unsigned destination = 0, gateway = 0;
		// The addresses are the machine's memory as a number: the first byte is the lowest or the highest one.
		if (sscanf(line, "%*s %8x %8x", &destination, &gateway) != 2 || destination != 0 || gateway == 0)
			continue;
		unsigned char bytes[sizeof gateway];
		memcpy(bytes, &gateway, sizeof gateway);
		char address[16];
		snprintf(address, sizeof address, "%u.%u.%u.%u", bytes[0], bytes[1], bytes[2], bytes[3]);
		return address;
	}
	return {};
}

std::string readGateway()
{
	std::string address;
	if (FILE *stream = fopen("/proc/net/route", "r")) {
		address = parseGateway(stream);
		fclose(stream);
	}
	return address;
}

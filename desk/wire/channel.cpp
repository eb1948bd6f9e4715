#include "channel.h"

#include "message.h"

#include <unistd.h>

#include <cerrno>

namespace desk
{

namespace
{

constexpr size_t lengthBytes = 4;

} // namespace

std::string lengthOf(size_t message)
{
	std::string bytes;
	for (int shift = 24; shift >= 0; shift -= 8)
		bytes += static_cast<char>(message >> shift & 255);
	return bytes;
}

Channel::~Channel()
{
	close(input);
	if (output != input)
		close(output);
}

void Channel::put(std::string_view message)
{
	outgoing += lengthOf(message.size());
	outgoing += message;
}

void Channel::flush()
{
	size_t sent = 0;
	while (sent < outgoing.size()) {
		const ssize_t n = write(output, outgoing.data() + sent, outgoing.size() - sent);
		if (n > 0)
			sent += static_cast<size_t>(n);
		else if (n < 0 && errno == EAGAIN)
			break;
		else if (n >= 0 || errno != EINTR)
			sent = outgoing.size(); // the reader is gone; read() reports that
	}
	outgoing.erase(0, sent);
}

Channel::Came Channel::read()
{
	constexpr size_t piece = 16384;
	incoming.erase(0, taken);
	taken = 0;
	const size_t before = incoming.size();
	incoming.resize(before + piece);
	ssize_t n = 0;
	do
		n = ::read(input, incoming.data() + before, piece);
	while (n < 0 && errno == EINTR);
	incoming.resize(before + static_cast<size_t>(n > 0 ? n : 0));
	return n > 0 ? Came::bytes : n < 0 && errno == EAGAIN ? Came::nothing : Came::end;
}

std::optional<std::string> Channel::next()
{
	if (incoming.size() - taken < lengthBytes)
		return std::nullopt;
	size_t length = 0;
	for (size_t i = 0; i < lengthBytes; ++i)
		length = length << 8 | static_cast<unsigned char>(incoming[taken + i]);
	broken = broken || length > mostMessageBytes;
	if (broken || incoming.size() - taken - lengthBytes < length)
		return std::nullopt;
	std::string message = incoming.substr(taken + lengthBytes, length);
	taken += lengthBytes + length;
	return message;
}

} // namespace desk

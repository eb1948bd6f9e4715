#ifndef DESK_WIRE_CHANNEL_H
#define DESK_WIRE_CHANNEL_H

#include <optional>
#include <string>
#include <string_view>

namespace desk
{

/// Sends and receives messages over two descriptors, which it owns. A message follows its length in four bytes,
/// big-endian.
class Channel
{
public:
	Channel(int in, int out) : input(in), output(out) {}
	~Channel();
	Channel(const Channel &) = delete;
	Channel &operator=(const Channel &) = delete;

	int in() const { return input; }

	/// Queues a message.
	void put(std::string_view message);
	/// Sends as much as possible; all of it on a blocking descriptor.
	void flush();
	bool sendsAll() const { return outgoing.empty(); }

	enum class Came
	{
		bytes,
		nothing,
		end, ///< the other end is closed
	};
	/// Reads once; waits on a blocking descriptor.
	Came read();
	/// The next complete message, if any.
	std::optional<std::string> next();
	/// An invalid length came.
	bool isBroken() const { return broken; }

private:
	int input, output;
	std::string incoming, outgoing;
	size_t taken = 0; ///< of `incoming`
	bool broken = false;
};

/// The four bytes before a message of that size.
std::string lengthOf(size_t message);

} // namespace desk

#endif

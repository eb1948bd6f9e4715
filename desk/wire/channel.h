#ifndef DESK_WIRE_CHANNEL_H
#define DESK_WIRE_CHANNEL_H

#include <optional>
#include <string>
#include <string_view>

namespace desk
{

/// Messages over two descriptors, which are the channel's from then on: the length in four bytes, the highest first,
/// and the message.
class Channel
{
public:
	Channel(int in, int out) : input(in), output(out) {}
	~Channel();
	Channel(const Channel &) = delete;
	Channel &operator=(const Channel &) = delete;

	int in() const { return input; }
	int out() const { return output; }

	/// Adds a message to those that are to be sent.
	void put(std::string_view message);
	/// Sends what it can without blocking; sleeps until all is sent where the descriptor blocks.
	void flush();
	bool sendsAll() const { return outgoing.empty(); }

	enum class Came
	{
		bytes,
		nothing,
		end, ///< nothing more will come
	};
	/// Reads once what there is, sleeping for it where the descriptor blocks.
	Came read();
	/// The next message that has come whole.
	std::optional<std::string> next();
	/// What comes are no messages.
	bool isBroken() const { return broken; }

private:
	int input, output;
	std::string incoming, outgoing;
	size_t taken = 0; ///< of `incoming`
	bool broken = false;
};

/// The length as it stands in front of a message.
std::string lengthOf(size_t message);

} // namespace desk

#endif

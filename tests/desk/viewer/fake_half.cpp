#include "fake_half.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

namespace
{

int away(int stream)
{
	return fcntl(stream, F_DUPFD_CLOEXEC, 3);
}

} // namespace

FakeHalf::FakeHalf() : peer(away(STDIN_FILENO), away(STDOUT_FILENO))
{
	const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC);
	dup2(nothing, STDIN_FILENO);
	dup2(STDERR_FILENO, STDOUT_FILENO);
	std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
	while (const auto message = peer.receive()) {
		if (std::holds_alternative<desk::Load>(*message))
			peer.send(desk::Loaded());
		if (std::holds_alternative<desk::Run>(*message))
			break;
	}
}

void FakeHalf::note(const std::string &line)
{
	peer.send(desk::Note{line, false});
}

void FakeHalf::show(const desk::DisplayList &frame, bool waits)
{
	desk::Frame message;
	message.edit = frame.editOf(before);
	message.waits = waits;
	before = frame;
	peer.send(message);
}

std::optional<desk::Key> FakeHalf::key(desk::Meaning (*clicked)(const desk::Click &))
{
	while (const auto message = peer.receive()) {
		if (const auto *press = std::get_if<desk::Press>(&*message))
			return press->key;
		if (const auto *click = std::get_if<desk::Click>(&*message))
			peer.send(clicked ? clicked(*click) : desk::Meaning());
	}
	return std::nullopt;
}

void FakeHalf::returned(int result)
{
	peer.send(desk::Returned{result});
	peer.receive();
}

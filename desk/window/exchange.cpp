#include "exchange.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace desk
{

using Lock = std::unique_lock<std::mutex>;

namespace
{

void copyRows(const unsigned char *from, Frame &to, const Rect &area)
{
	const int start = area.y * frameStride, length = area.h * frameStride;
	std::copy_n(from + start, length, to.data() + start);
}

} // namespace

Exchange::Exchange() : wakeUp(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Exchange::~Exchange()
{
	::close(wakeUp);
}

void Exchange::wakeWindow()
{
	eventfd_write(wakeUp, 1);
}

void Exchange::settle()
{
	eventfd_t unused;
	eventfd_read(wakeUp, &unused);
}

bool Exchange::waitOpened(std::string &error)
{
	Lock lock(mutex);
	if (!changed.wait_for(lock, displayPatience, [&] { return opening || isClosed; }))
		whyLost = displayIsSilent;
	error = opening ? *opening : whyLost;
	return error.empty();
}

void Exchange::opened(const std::string &error)
{
	const Lock lock(mutex);
	opening = error;
	changed.notify_all();
}

void Exchange::show(const unsigned char *pixels, const Rect &area)
{
	{
		const Lock lock(mutex);
		copyRows(pixels, frame, area);
		fresh = fresh.empty() ? area : fresh.united(area);
	}
	wakeWindow();
}

Rect Exchange::fetch(Frame &into)
{
	const Lock lock(mutex);
	copyRows(frame.data(), into, fresh);
	return std::exchange(fresh, {});
}

void Exchange::notify(const std::string &line)
{
	{
		const Lock lock(mutex);
		notice = line;
	}
	wakeWindow();
}

std::optional<std::string> Exchange::fetchNotice()
{
	const Lock lock(mutex);
	return std::exchange(notice, std::nullopt);
}

std::optional<Input> Exchange::waitInput()
{
	Lock lock(mutex);
	changed.wait(lock, [&] { return isClosed || isWoken || !inputs.empty(); });
	if (isClosed || std::exchange(isWoken, false))
		return std::nullopt;
	const Input next = inputs.front();
	inputs.pop_front();
	return next;
}

void Exchange::wakePlugin()
{
	const Lock lock(mutex);
	isWoken = true;
	changed.notify_all();
}

void Exchange::put(Input input)
{
	const Lock lock(mutex);
	inputs.push_back(input);
	changed.notify_all();
}

void Exchange::close()
{
	const Lock lock(mutex);
	isClosed = true;
	changed.notify_all();
}

void Exchange::lose(const std::string &why)
{
	const Lock lock(mutex);
	isClosed = true;
	whyLost = why;
	changed.notify_all();
}

bool Exchange::closed() const
{
	const Lock lock(mutex);
	return isClosed;
}

std::string Exchange::lost() const
{
	const Lock lock(mutex);
	return whyLost;
}

bool Exchange::finish()
{
	Lock lock(mutex);
	isFinishing = true;
	changed.notify_all();
	wakeWindow();
	changed.wait(lock, [&] { return hasEnded || !whyLost.empty(); });
	return whyLost.empty();
}

void Exchange::ended()
{
	const Lock lock(mutex);
	hasEnded = true;
	changed.notify_all();
}

bool Exchange::finishing() const
{
	const Lock lock(mutex);
	return isFinishing;
}

bool Exchange::finishingWithin(std::chrono::milliseconds time)
{
	Lock lock(mutex);
	return changed.wait_for(lock, time, [&] { return isFinishing; });
}

} // namespace desk

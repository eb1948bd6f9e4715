#include "scanlog_entries.h"

ScanLogEntries::~ScanLogEntries()
{
	while (first)
		dropFirst();
}

void ScanLogEntries::append(const char *text, std::size_t textLength, const char *line,
                            std::size_t lineLength)
{
	const std::size_t needed = textLength + 1 + lineLength + 1;
	if (!last || sizeof last->bytes - last->used < needed) {
		Block *const fresh = new Block;
		fresh->next = nullptr;
		fresh->used = 0;
		(last ? last->next : first) = fresh;
		last = fresh;
	}
	char *const to = last->bytes + last->used;
	std::memcpy(to, text, textLength);
	to[textLength] = '\0';
	std::memcpy(to + textLength + 1, line, lineLength);
	to[needed - 1] = '\0';
	last->used += needed;
}

void ScanLogEntries::dropFirst()
{
	Block *const dropped = first;
	first = dropped->next;
	delete dropped;
}

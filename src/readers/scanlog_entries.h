#ifndef VEXLO_SCANLOG_ENTRIES_H
#define VEXLO_SCANLOG_ENTRIES_H

#include <cstddef>
#include <cstring>
#include <iterator>

/// One row of the scan log's list, as long as its rows are there.
struct ScanLogEntry
{
	const char *text; ///< line number from 0, a blank, and the line or a piece of it
	const char *line; ///< the whole line as read from the log, line end included
};

/// Rows in order. A log can be large: the rows' bytes lie behind one another in blocks, so that what grows is never
/// copied, and what has been taken from the front leaves memory that serves for other things at once.
class ScanLogEntries
{
	struct Block
	{
		Block *next;
		std::size_t used;           ///< of the bytes
		char bytes[16 * 1024 - 64]; ///< of each row its text and its line, a NUL behind each
	};

public:
	ScanLogEntries() = default;
	ScanLogEntries(ScanLogEntries &&from) noexcept : first(from.first), last(from.last), count(from.count)
	{
		from.first = from.last = nullptr;
		from.count = 0;
	}
	ScanLogEntries(const ScanLogEntries &) = delete;
	ScanLogEntries &operator=(const ScanLogEntries &) = delete;
	~ScanLogEntries()
	{
		takeAll([](const ScanLogEntry &) {});
	}

	/// Of all rows, from the first on.
	class const_iterator
	{
	public:
		using iterator_category = std::forward_iterator_tag;
		using value_type = ScanLogEntry;
		using difference_type = std::ptrdiff_t;
		using pointer = const ScanLogEntry *;
		using reference = const ScanLogEntry &;

		explicit const_iterator(const Block *at) : block(at), row(rowAt(at ? at->bytes : nullptr)) {}
		reference operator*() const { return row; }
		pointer operator->() const { return &row; }
		const_iterator &operator++()
		{
			const char *next = endOf(row);
			if (next == block->bytes + block->used) {
				block = block->next;
				next = block ? block->bytes : nullptr;
			}
			row = rowAt(next);
			return *this;
		}
		bool operator==(const const_iterator &o) const { return row.text == o.row.text; }
		bool operator!=(const const_iterator &o) const { return !(*this == o); }

	private:
		const Block *block;
		ScanLogEntry row;
	};

	const_iterator begin() const { return const_iterator(first); }
	const_iterator end() const { return const_iterator(nullptr); }
	bool empty() const { return !first; }
	std::size_t size() const { return count; }

	/// Adds a row of these lengths in bytes, together not more than a few lines; neither holds a NUL.
	void append(const char *text, std::size_t textLength, const char *line, std::size_t lineLength)
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
		++count;
	}

	/// Takes all rows out, from the first on, and calls `use` with each.
	template <class Use> void takeAll(const Use &use)
	{
		while (Block *const taken = first) {
			ScanLogEntry row;
			for (const char *at = taken->bytes; at != taken->bytes + taken->used; at = endOf(row)) {
				row = rowAt(at);
				use(row);
			}
			first = taken->next;
			delete taken;
		}
		last = nullptr;
		count = 0;
	}

private:
	static ScanLogEntry rowAt(const char *at) { return {at, at ? at + std::strlen(at) + 1 : nullptr}; }
	static const char *endOf(const ScanLogEntry &row) { return row.line + std::strlen(row.line) + 1; }

	Block *first = nullptr, *last = nullptr;
	std::size_t count = 0;
};

#endif
